#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/support/thread_priority.hpp"

namespace vorn {

void lowerThreadPriority() noexcept {
    constexpr int kNice = 10;
    // On Linux each thread has a nice value of its own.
    const long thread = ::syscall(SYS_gettid);
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), kNice);
}

}  // namespace vorn
