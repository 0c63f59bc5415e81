#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <variant>

#include "core/data/activity/activity_summary.hpp"
#include "core/data/client_answer.hpp"
#include "core/data/probe_failure.hpp"
#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/support/file.hpp"
#include "core/support/time.hpp"
#include "core/usage_command/client_question.hpp"

/// Where the model gets its readings. Each of these works off the main thread where it may take long, is asked one
/// thing at a time, and answers on the main thread exactly once, or not at all after its destruction. Destroying one
/// while it works is safe and does not wait.
namespace vorn {

class ProbeSource {
public:
    /// What the client said, or why it said nothing.
    using Answer = std::variant<ClientAnswer, ProbeFailure>;

    virtual ~ProbeSource() = default;
    virtual void run(const ClientQuestion& question, std::function<void(Answer)> done) = 0;
    /// For the end of the process: gives up what is running and waits for its end, at most `patience`. No answer comes.
    virtual void shutDown(std::chrono::milliseconds patience) { static_cast<void>(patience); }
};

class ActivitySource {
public:
    /// Of all replies of the last seven days; empty when they are the same as in the answer before.
    using Answer = std::optional<ActivitySummary>;

    virtual ~ActivitySource() = default;
    virtual void scan(Instant now, std::function<void(Answer)> done) = 0;
};

/// What the relay left; quick enough to be read on the main thread.
class SnapshotSource {
public:
    virtual ~SnapshotSource() = default;
    /// Changes whenever the file's content does; empty when there is none.
    [[nodiscard]] virtual std::optional<FileStamp> stamp() const = 0;
    [[nodiscard]] virtual std::optional<StatusLineSnapshot> read() const = 0;
    /// The limits beside the snapshot's, as they came last; they may be older than it.
    [[nodiscard]] virtual std::optional<MoreLimits> readMore() const { return std::nullopt; }
};

}  // namespace vorn
