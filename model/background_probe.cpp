#include "model/background_probe.hpp"

#include <exception>
#include <utility>

#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/usage_command/probe_error.hpp"

namespace vorn {
namespace {

/// Between asking a client to terminate and killing it, when nobody wants its answer any more.
constexpr std::chrono::milliseconds kGrace{50};

/// How long a terminal that is asking the client already is waited for: asking takes under a second, and a client that
/// hangs for one of us hangs for both.
constexpr std::chrono::seconds kTurnPatience{3};

/// Everything in here may take long: the search path may lead to a network drive.
ProbeSource::Answer ask(const ClientQuestion& question, const Cancellation& cancellation) {
    const auto turn = FileLock::acquire(VornPaths::probingLock(), kTurnPatience);
    return question.ask(systemNow, &cancellation);
}

}  // namespace

BackgroundProbe::~BackgroundProbe() {
    cancel();
}

void BackgroundProbe::run(const ClientQuestion& question, std::function<void(Answer)> done) {
    m_cancellation = std::make_shared<Cancellation>();
    const bool isRunning = m_queue.run([question, done, cancellation = m_cancellation]() -> BackgroundQueue::Answer {
        Answer answer;
        try {
            answer = ask(question, *cancellation);
        } catch (const Cancelled&) {
            return nullptr;
        } catch (const ProbeError& error) {
            answer = error.failure();
        } catch (const std::exception& error) {
            answer = ProbeFailure{.kind = ProbeFailure::Kind::other, .detail = error.what()};
        }
        return [done, answer] {
            done(answer);
        };
    });
    if (!isRunning) {
        done(ProbeFailure{.kind = ProbeFailure::Kind::launchFailed, .detail = "no thread could be started for it"});
    }
}

void BackgroundProbe::shutDown(std::chrono::milliseconds patience) {
    cancel();
    static_cast<void>(m_queue.waitForJobs(patience));
}

void BackgroundProbe::cancel() {
    if (m_cancellation) {
        m_cancellation->cancel(kGrace);
    }
}

}  // namespace vorn
