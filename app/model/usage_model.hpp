#pragma once

#include <QObject>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/model/background_queue.hpp"
#include "app/model/history_keeper.hpp"
#include "app/model/model_clock.hpp"
#include "app/model/model_sources.hpp"
#include "app/model/plan_keeper.hpp"
#include "app/model/probe_memory.hpp"
#include "core/analysis/assess.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/session_week_ratio.hpp"
#include "core/analysis/steer.hpp"
#include "core/data/history_store.hpp"
#include "core/data/probe_record.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/usage_insights.hpp"
#include "core/data/usage_state.hpp"
#include "core/sources/activity_summary.hpp"
#include "demo/demo.hpp"

namespace vorn {

class Preferences;

/// Drives everything: decides when each source is read, keeps what they say, has it analysed and publishes the results.
/// Main thread only. Getters return what the last recomputation found; each published value has a signal that comes
/// when it was written.
class UsageModel : public QObject {
    Q_OBJECT

public:
    struct Phase {
        enum class Kind : std::uint8_t {
            starting,  ///< nothing read yet
            ready,     ///< there was a reading
            failed,    ///< a probe failed and nothing was ever read
        };
        Kind kind = Kind::starting;
        std::string message{};  ///< Only when failed: what people see.
        bool operator==(const Phase&) const = default;
    };

    /// What the model works with. All of it is the model's own from then on. A demonstration uses nothing but the
    /// clock; the sources and the ticker may then be null.
    struct Parts {
        std::unique_ptr<ModelClock> clock;
        std::unique_ptr<Ticker> ticker;
        std::unique_ptr<ProbeSource> probe;
        std::unique_ptr<ActivitySource> activity;
        std::unique_ptr<SnapshotSource> snapshot;
        std::unique_ptr<HistoryStore> history;
        ResetPlanStore resetPlan;
        ProbeRecordStore probeRecord;
    };

    static constexpr Seconds tickInterval{5};
    /// What ending may take at most.
    static constexpr std::chrono::milliseconds shutdownPatience{200};

    /// `preferences` must outlive the model.
    UsageModel(Preferences& preferences, Parts parts, QObject* parent = nullptr);
    ~UsageModel() override;

    /// Begins to read and to tick. Once.
    void start();
    /// For the end of the process: stops everything, has a running client killed and the history written out, and waits
    /// for both no longer than `shutdownPatience` each. Threads that hang may be left behind, so `main` ends the
    /// process after this without running the destructors of static objects.
    void shutDown();
    /// Asks the client now, unless it is being asked or this is a demonstration.
    void probe();
    /// The same, and once more when it is being asked: another client is meant by now.
    void probeAnew();
    /// `probe` when the freshest reading is more than 60 s old.
    void refreshIfStale();
    /// Everything that follows from the readings, for the present moment.
    void recompute();
    /// Replaces everything by invented data; from then on nothing is read or written.
    void startDemo(const demo::Demo& demo);

    // The reset plan as the user edits it. An edit holds in memory even when it cannot be saved.
    void addPlannedReset(const PlannedReset& reset);
    void removePlannedReset(const std::string& id);
    /// The user redeemed a banked reset: the next fall of the limits it covers is believed at once.
    void redeemReset(PlannedReset::Scope scope);
    /// The same was entered into the plan's file by another program, which tells of it.
    void redeemedElsewhere(PlannedReset::Scope scope);
    void setBankedResets(std::int64_t count);

    [[nodiscard]] const Phase& phase() const { return m_phase; }
    /// One a window, ordered by kind.
    [[nodiscard]] const std::vector<WindowAssessment>& assessments() const { return m_assessments; }
    [[nodiscard]] const std::optional<UsageInsights>& insights() const { return m_state.insights(); }
    [[nodiscard]] const ActivitySummary& activity() const { return m_activity; }
    /// Whether the transcripts have been read at least once.
    [[nodiscard]] bool hasScanned() const { return m_hasScanned; }
    [[nodiscard]] bool isProbing() const { return m_isProbing; }
    [[nodiscard]] std::optional<Instant> lastProbeAt() const { return m_lastProbeAt; }
    /// As people read it; cleared by a success.
    [[nodiscard]] const std::optional<std::string>& lastProbeError() const { return m_lastProbeError; }
    [[nodiscard]] std::optional<Instant> lastStatusLineAt() const { return m_lastStatusLineAt; }
    /// Of the last tick or recomputation: what countdowns are computed against.
    [[nodiscard]] Instant now() const { return m_now; }
    [[nodiscard]] const std::vector<HistorySample>& history() const { return m_history.samples(); }
    [[nodiscard]] const std::optional<SessionWeekRatio>& sessionWeekRatio() const { return m_sessionWeekRatio; }
    [[nodiscard]] const std::optional<VornSteer>& steer() const { return m_steer; }
    [[nodiscard]] const ResetPlan& resetPlan() const { return m_plan.plan(); }
    [[nodiscard]] bool isDemo() const { return m_isDemo; }
    /// What cannot be written to the disk, as people read it.
    [[nodiscard]] const std::optional<std::string>& storageProblem() const { return m_storageProblem; }
    /// False for the moment that reading the file takes; readings wait for it to be recorded.
    [[nodiscard]] bool isHistoryLoaded() const { return m_history.isLoaded(); }
    [[nodiscard]] const UsageState& state() const { return m_state; }
    [[nodiscard]] Preferences& preferences() const { return m_preferences; }

    /// The assessment of that window; null when there is none. Valid until the next recomputation.
    [[nodiscard]] const WindowAssessment* session() const;
    [[nodiscard]] const WindowAssessment* week() const;
    /// The window that `steer` speaks of.
    [[nodiscard]] const WindowAssessment* steerAssessment() const;
    /// The local activity that rates are formed from; null when it is switched off and in a demonstration.
    [[nodiscard]] const ActivitySummary* rateActivity() const;
    /// The recorded readings of a window's instance, as stored.
    [[nodiscard]] std::vector<HistorySample> samples(const UsageWindow& window) const;
    [[nodiscard]] const HistoryIndex& historyIndex() const { return m_history.index(); }

signals:
    void phaseChanged();
    void assessmentsChanged();
    void insightsChanged();
    void activityChanged();
    void isProbingChanged();
    void lastProbeAtChanged();
    void lastProbeErrorChanged();
    void lastStatusLineAtChanged();
    void nowChanged();
    void historyChanged();
    void sessionWeekRatioChanged();
    void steerChanged();
    void resetPlanChanged();
    void isDemoChanged();
    void storageProblemChanged();
    /// At the end of every recomputation: everything above is consistent now.
    void changed();

private:
    template <typename Value>
    void publish(Value& property, Value value, void (UsageModel::*notify)()) {
        if (property != value) {
            property = std::move(value);
            emit(this->*notify)();
        }
    }

    void tick();
    [[nodiscard]] bool isProbeDue() const;
    [[nodiscard]] bool isScanDue() const;
    [[nodiscard]] bool isRecomputeDue() const;
    [[nodiscard]] bool isAhead(Instant stamp) const;

    // Each of these tells whether there was something new.
    bool readSnapshot();
    bool readPlan();
    bool readRecord();
    bool takeRecord(const ProbeMemory::News& news);

    void scanActivity();
    void finishProbe(ProbeSource::Answer answer);
    void succeed(const UsageCommandParser::Result& result);
    void fail(const std::string& message);
    void becomeReady();
    void saveRecord();

    void beginWithHistory();
    void ingest(const std::vector<UsageWindow>& windows, HistoryStore::Stored stored = HistoryStore::Stored::notYet);
    void takeIn(const std::vector<UsageWindow>& windows, HistoryStore::Stored stored);

    void editPlan(const std::function<void(ResetPlan&)>& change);
    void expectReset(PlannedReset::Scope scope);
    void expectReset(std::vector<WindowKind> kinds);

    void assess();
    void updateSteer();
    void updateRatio();
    void updateStorageProblem();

    Preferences& m_preferences;
    std::unique_ptr<ModelClock> m_clock;
    std::unique_ptr<Ticker> m_ticker;
    std::unique_ptr<ProbeSource> m_probe;
    std::unique_ptr<ActivitySource> m_activitySource;
    std::unique_ptr<SnapshotSource> m_snapshot;
    BackgroundQueue m_disk;
    HistoryKeeper m_history;
    PlanKeeper m_plan;
    ProbeMemory m_probeMemory;

    // Published.
    Phase m_phase;
    std::vector<WindowAssessment> m_assessments;
    ActivitySummary m_activity;
    bool m_isProbing = false;
    std::optional<Instant> m_lastProbeAt;
    std::optional<std::string> m_lastProbeError;
    std::optional<Instant> m_lastStatusLineAt;
    Instant m_now;
    std::optional<SessionWeekRatio> m_sessionWeekRatio;
    std::optional<VornSteer> m_steer;
    bool m_isDemo = false;
    std::optional<std::string> m_storageProblem;

    UsageState m_state;
    std::optional<WindowKind> m_bindingKind;    ///< What the current steer is bound to.
    std::size_t m_ratioHistoryCount = 0;        ///< How many samples the ratio was last formed from.
    std::optional<FileStamp> m_lastSnapshot;    ///< The snapshot that was read last.
    std::optional<Instant> m_lastActivityScan;  ///< When it began.
    std::optional<Instant> m_lastRecompute;
    int m_consecutiveFailures = 0;  ///< Of probes, since the last success.
    bool m_owesProbe = false;       ///< When the running one has ended.
    bool m_isScanning = false;
    bool m_hasScanned = false;
    std::vector<UsageWindow> m_lastAnswer;  ///< Of the client, before any judgement.

    /// What came before the history was there, to be judged and recorded then.
    struct EarlyNews {
        std::vector<UsageWindow> windows{};
        HistoryStore::Stored stored = HistoryStore::Stored::notYet;
        std::vector<WindowKind> announced{};  ///< After the readings.
    };
    std::vector<EarlyNews> m_earlyNews;
};

}  // namespace vorn
