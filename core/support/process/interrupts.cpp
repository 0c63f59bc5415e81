#include "core/support/process/interrupts.hpp"

#include <csignal>

namespace vorn {
namespace {

Cancellation* interrupted = nullptr;

extern "C" void onInterrupt(int) {
    interrupted->cancel();
}

void catchSignal(int number) {
    struct sigaction before {};
    if (sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
}

}  // namespace

const Cancellation& catchInterrupts() {
    static Cancellation cancellation;
    interrupted = &cancellation;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        catchSignal(number);
    }
    return cancellation;
}

}  // namespace vorn
