#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/data/client_answer.hpp"
#include "core/data/probe_failure.hpp"
#include "core/data/usage_window.hpp"
#include "core/support/file.hpp"

namespace vorn {

/// What is remembered of asking the client between runs and between programs, so that a status bar that refreshes every
/// few seconds never hammers a client that fails.
struct ProbeRecord {
    std::optional<Instant> lastProbeAt;  ///< When the last probe finished, successfully or not.
    /// Since the last success; never negative. An answer with old figures counts as one, but has no `failure`.
    int consecutiveFailures = 0;
    std::optional<ProbeFailure> failure;  ///< Of the last time; absent after a success.
    std::optional<Instant> figuresOf;     ///< When the last answer's figures were true, where they were old.
    /// The last answer as it was read, before any judgement: a large fall needs a second reading to be believed, and
    /// the next program to ask must know of the first.
    std::vector<UsageWindow> readings;
    std::set<WindowKind> expectedResets;    ///< Announced by the user and not seen after those readings.
    std::vector<UsageWindow> pendingDrops;  ///< Large falls that were seen once and are not believed yet.
    OtherLimits others;                     ///< As they were told of last.

    /// A limit that answers no longer list although they list all.
    struct Missing {
        Instant since;
        Instant until;
        bool operator==(const Missing&) const = default;
    };
    std::map<WindowKind, Missing> missing;
    std::string account;  ///< Of the last answer, see `ClientAnswer`.

    [[nodiscard]] ProbeRecord afterAnswer(const ClientAnswer& answer, Instant now) const;
    [[nodiscard]] ProbeRecord afterFailure(Instant now, ProbeFailure why) const;

    bool operator==(const ProbeRecord&) const = default;
};

/// How long to wait after the last probe: `refresh` after a success, doubled by each failure up to 16 times.
Seconds probeInterval(int consecutiveFailures, Seconds refresh);

/// Whether the client is due to be asked: never asked, the interval has passed, or the clock was set back to before the
/// last time.
bool isProbeDue(const ProbeRecord& record, Seconds refresh, Instant now);

/// Whether a failed probe may be tried again at `now`; true as well after a success.
bool mayRetryProbe(const ProbeRecord& record, Seconds refresh, Instant now);

/// The record as a small JSON file. A missing or malformed file is an empty record.
class ProbeRecordStore {
public:
    explicit ProbeRecordStore(std::filesystem::path file) : m_file(std::move(file)) {}
    [[nodiscard]] ProbeRecord load() const;
    /// Which record the file holds, to be compared before reading it; see `fileStamp`.
    [[nodiscard]] std::optional<FileStamp> stamp() const { return fileStamp(m_file); }
    /// False when it could not be written.
    [[nodiscard]] bool save(const ProbeRecord& record) const;

    /// How long `edit` waits for another process by default: it is called on the application's main thread.
    static constexpr std::chrono::milliseconds defaultPatience{50};

    /// Applies a change to the record as it stands in the file, with every other editor locked out, so that what one
    /// program remembers does not undo what another announced. Returns the record as it is now; a change that changes
    /// nothing writes nothing. Throws std::filesystem::filesystem_error, with `device_or_resource_busy` when the lock
    /// cannot be had in time; the file is then as it was.
    ProbeRecord edit(const std::function<void(ProbeRecord&)>& change,
                     std::chrono::milliseconds patience = defaultPatience) const;

private:
    void write(const ProbeRecord& record) const;

    std::filesystem::path m_file;
};

}  // namespace vorn
