#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/data/history_sample.hpp"
#include "core/data/probe_record.hpp"
#include "core/sources/activity_event.hpp"
#include "core/sources/status_line_snapshot.hpp"
#include "core/sources/usage_command_parser.hpp"
#include "core/support/time.hpp"

/// Where the model gets its readings. Each of these works off the main thread where it may take long, is asked one
/// thing at a time, and answers on the main thread exactly once, or not at all after its destruction. Destroying one
/// while it works is safe and does not wait.
namespace vorn {

class ProbeSource {
public:
    /// What the client said, or why it said nothing, as people read it.
    using Answer = std::variant<UsageCommandParser::Result, std::string>;

    virtual ~ProbeSource() = default;
    /// `overridePath`: the executable the user chose; empty to look for one.
    virtual void run(const std::string& overridePath, std::function<void(Answer)> done) = 0;
};

class ActivitySource {
public:
    /// All replies of the last seven days by time; empty when they are the same as in the answer before.
    using Answer = std::optional<std::vector<ActivityEvent>>;

    virtual ~ActivitySource() = default;
    virtual void scan(Instant now, std::function<void(Answer)> done) = 0;
};

/// Quick enough for the main thread.
class SnapshotSource {
public:
    virtual ~SnapshotSource() = default;
    /// Changes whenever the file's content does; empty when there is none.
    [[nodiscard]] virtual std::optional<Instant> modified() const = 0;
    [[nodiscard]] virtual std::optional<StatusLineSnapshot> read() const = 0;
};

}  // namespace vorn
