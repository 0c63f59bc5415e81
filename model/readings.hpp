#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "core/analysis/answer.hpp"
#include "core/data/ledger.hpp"
#include "model/history_keeper.hpp"
#include "model/model_clock.hpp"
#include "model/model_sources.hpp"
#include "model/probe_memory.hpp"

namespace vorn {

/// What has been read of the limits, on the main thread: the ledger that judges it, and the files that keep it, the
/// history and the record of asking the client.
class Readings {
public:
    /// `clock` and `disk` must outlive it. `snapshot` may be null for a demonstration.
    Readings(std::unique_ptr<SnapshotSource> snapshot, std::unique_ptr<HistoryStore> history, ProbeRecordStore record,
             std::optional<OutcomeStore> outcomes, const ModelClock& clock, BackgroundQueue& disk);

    /// Reads the history in the background; `onNews` comes when readings can be judged by it.
    void load();
    /// Whether it has been read, and what came early has been judged.
    [[nodiscard]] bool areJudged() const { return m_ledger.hasBegun(); }

    // Each looks at a file that others write, and tells whether there was something new.
    bool readSnapshot();
    bool readRecord();

    void takeAnswer(const ClientAnswer& answer);
    void takeFailure(const ProbeFailure& failure);
    /// What the transcripts tell of refused turns, all that are known. True when that changed anything.
    bool takeRefusals(std::span<const RefusedTurn> refusals);
    /// The user announced a reset of the windows there are.
    void announceReset(PlannedReset::Scope scope);
    /// For a demonstration: these instead, from no file and kept in none.
    void replace(std::span<const UsageWindow> windows, UsageInsights insights, std::vector<HistorySample> history);

    [[nodiscard]] const UsageState& state() const { return m_ledger.state(); }
    [[nodiscard]] const OtherLimits& others() const { return m_ledger.others(); }
    /// Reset times that were seen to change within the last hour.
    [[nodiscard]] std::vector<Outcome> moved(Instant now) const;
    /// A large fall that nobody has asked the client about.
    [[nodiscard]] bool hasOpenDoubt() const;
    /// The windows as they stand now, by kind.
    [[nodiscard]] std::vector<UsageWindow> current(Instant now);
    [[nodiscard]] const std::vector<HistorySample>& history() const { return m_history.samples(); }
    [[nodiscard]] const HistoryIndex& index() const { return m_history.index(); }
    /// When the client was last asked, by this or another program, and what came of it.
    [[nodiscard]] const ProbeRecord& asked() const { return m_asked; }
    /// The same for people; `refresh`: how often a client is asked that answers.
    [[nodiscard]] Asking asking(Seconds refresh) const;
    [[nodiscard]] std::optional<Instant> lastStatusLineAt() const { return m_lastStatusLineAt; }
    /// A part of the history is in memory alone.
    [[nodiscard]] bool isUnsaved() const { return m_history.isUnsaved(); }

    /// Called when something is new that nobody here asked for.
    std::function<void()> onNews;

private:
    void begin();
    bool takeRecord(const ProbeMemory::News& news);
    void keep(const Ledger::Taken& taken);
    void saveRecord();

    const std::unique_ptr<SnapshotSource> m_snapshot;
    const ModelClock& m_clock;
    HistoryKeeper m_history;
    ProbeMemory m_probeMemory;
    Ledger m_ledger;
    ProbeRecord m_asked;  ///< What it says of asking; of readings the ledger knows.
    std::vector<Outcome> m_moved;
    const std::optional<OutcomeStore> m_outcomes;
    BackgroundQueue& m_disk;
    std::optional<Instant> m_lastStatusLineAt;
    std::optional<FileStamp> m_lastSnapshot;  ///< The snapshot that was read last.
    bool m_isDetached = false;                ///< From all files.
};

}  // namespace vorn
