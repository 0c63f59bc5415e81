#include "model/background_activity.hpp"

#include <exception>
#include <utility>

#include "core/transcripts/local_activity_scanner.hpp"

namespace vorn {

/// Used by one job at a time.
struct BackgroundActivity::Scanner {
    LocalActivityScanner transcripts;
    bool owesAnswer = true;  ///< What was found has not been handed on.

    Answer scan(Instant now) {
        owesAnswer = transcripts.update(now) || owesAnswer;
        if (!owesAnswer) {
            return std::nullopt;
        }
        ActivitySummary summary(transcripts.events(), transcripts.refusals());
        owesAnswer = false;
        return summary;
    }
};

BackgroundActivity::BackgroundActivity(std::filesystem::path root)
    : m_scanner(new Scanner{.transcripts{std::move(root), lookback}}) {}

void BackgroundActivity::scan(Instant now, std::function<void(Answer)> done) {
    const bool isRunning = m_queue.run([scanner = m_scanner, now, done]() -> BackgroundQueue::Answer {
        const auto answer = std::make_shared<Answer>();
        try {
            *answer = scanner->scan(now);
        } catch (const std::exception&) {
            // Out of memory or threads: what is known stays until a scan succeeds.
        }
        return [answer, done] {
            done(std::move(*answer));
        };
    });
    if (!isRunning) {
        done(std::nullopt);
    }
}

}  // namespace vorn
