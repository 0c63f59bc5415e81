#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/model/model_clock.hpp"
#include "app/model/model_sources.hpp"
#include "core/analysis/assess.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/session_week_ratio.hpp"
#include "core/analysis/steer.hpp"
#include "core/data/history_store.hpp"
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
    Q_PROPERTY(bool isProbing READ isProbing NOTIFY isProbingChanged)
    Q_PROPERTY(bool isDemo READ isDemo NOTIFY isDemoChanged)

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

    /// What the model works with. All of it is the model's own from then on.
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

    /// `preferences` must outlive the model.
    UsageModel(Preferences& preferences, Parts parts, QObject* parent = nullptr);
    ~UsageModel() override;

    /// Begins to read and to tick. Once.
    void start();
    /// Asks the client now, unless it is being asked or this is a demonstration.
    void probe();
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
    void setBankedResets(std::int64_t count);

    [[nodiscard]] const Phase& phase() const { return m_phase; }
    /// One a window, ordered by kind.
    [[nodiscard]] const std::vector<WindowAssessment>& assessments() const { return m_assessments; }
    [[nodiscard]] const std::optional<UsageInsights>& insights() const { return m_state.insights(); }
    [[nodiscard]] const ActivitySummary& activity() const { return m_activity; }
    [[nodiscard]] bool isProbing() const { return m_isProbing; }
    [[nodiscard]] std::optional<Instant> lastProbeAt() const { return m_lastProbeAt; }
    /// As people read it; cleared by a success.
    [[nodiscard]] const std::optional<std::string>& lastProbeError() const { return m_lastProbeError; }
    [[nodiscard]] std::optional<Instant> lastStatusLineAt() const { return m_lastStatusLineAt; }
    /// Of the last tick or recomputation: what countdowns are computed against.
    [[nodiscard]] Instant now() const { return m_now; }
    [[nodiscard]] const std::vector<HistorySample>& history() const { return m_history; }
    [[nodiscard]] const std::optional<SessionWeekRatio>& sessionWeekRatio() const { return m_sessionWeekRatio; }
    [[nodiscard]] const std::optional<VornSteer>& steer() const { return m_steer; }
    [[nodiscard]] const ResetPlan& resetPlan() const { return m_resetPlan; }
    [[nodiscard]] bool isDemo() const { return m_isDemo; }
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
    [[nodiscard]] const HistoryIndex& historyIndex() const { return m_historyIndex; }

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
    /// At the end of every recomputation: everything above is consistent now.
    void changed();

private:
    Preferences& m_preferences;
    Parts m_parts;
    Phase m_phase;
    std::vector<WindowAssessment> m_assessments;
    ActivitySummary m_activity;
    bool m_isProbing = false;
    std::optional<Instant> m_lastProbeAt;
    std::optional<std::string> m_lastProbeError;
    std::optional<Instant> m_lastStatusLineAt;
    Instant m_now;
    std::vector<HistorySample> m_history;
    HistoryIndex m_historyIndex;
    std::optional<SessionWeekRatio> m_sessionWeekRatio;
    std::optional<VornSteer> m_steer;
    ResetPlan m_resetPlan;
    bool m_isDemo = false;
    UsageState m_state;
};

}  // namespace vorn
