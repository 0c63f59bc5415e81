#pragma once

#include <QObject>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo.hpp"
#include "model/activity_keeper.hpp"
#include "model/background_queue.hpp"
#include "model/conclusions.hpp"
#include "model/model_parts.hpp"
#include "model/plan_keeper.hpp"
#include "model/readings.hpp"

namespace vorn {

class Preferences;

/// Decides when each source is read and when everything is recomputed, and publishes what follows as one `Answer`.
/// Main thread only. What the getters give is of the last recomputation.
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

    static constexpr Seconds tickInterval{5};
    /// The longest that `shutDown` waits, for the client and for the disk each.
    static constexpr std::chrono::milliseconds shutdownPatience{200};

    /// `preferences` must outlive the model.
    UsageModel(Preferences& preferences, ModelParts parts, QObject* parent = nullptr);
    ~UsageModel() override;

    /// Begins to read and to tick. Once.
    void start();
    /// For the end of the process: stops everything, has a running client killed and the history written out, and waits
    /// for both no longer than `shutdownPatience` each. Threads that hang may be left behind, so `main` ends the
    /// process after this without running the destructors of static objects.
    void shutDown();
    /// Asks the client now, unless it is being asked or this is a demonstration.
    void probe();
    /// Asks the client now, and once more where it is being asked already: another client is meant by now.
    void probeAnew();
    /// `probe` when the freshest reading is more than 60 s old.
    void refreshIfStale();
    /// The same unless the client was asked within two minutes: for a window that opens, and after a sleep.
    void refreshForViewer();
    /// Whether somebody looks at the client's breakdown, for which it may have to be asked in another way.
    void setBreakdownShown(bool isShown) { m_isBreakdownShown = isShown; }
    /// Forms the answer anew, for the present moment.
    void recompute();
    /// Replaces everything by invented data; from then on nothing is read or written.
    void startDemo(const demo::Demo& demo);

    // The reset plan as the user edits it. An edit holds in memory even when it cannot be saved.
    void addPlannedReset(const PlannedReset& reset);
    void removePlannedReset(const std::string& id);
    void setBankedResets(std::int64_t count);
    /// The user redeemed a banked reset: the next fall of the limits it covers is believed at once.
    void redeemReset(PlannedReset::Scope scope);
    /// Another program tells that the user redeemed a banked reset there; the plan's file says so already.
    void redeemedElsewhere(PlannedReset::Scope scope);

    /// What everything that people see is made from.
    [[nodiscard]] const Answer& answer() const { return m_conclusions.answer(); }

    // What the answer is formed from, and the plain computation on it: whatever is held, judged or not.
    [[nodiscard]] const Phase& phase() const { return m_phase; }
    /// One a window, ordered by kind.
    [[nodiscard]] const std::vector<WindowAssessment>& assessments() const { return m_conclusions.assessments(); }
    [[nodiscard]] const std::optional<UsageInsights>& insights() const { return m_readings.state().insights(); }
    [[nodiscard]] const ActivitySummary& activity() const;
    [[nodiscard]] bool isProbing() const { return m_isProbing; }
    [[nodiscard]] std::optional<Instant> lastProbeAt() const { return m_readings.asked().lastProbeAt; }
    /// Why the last probe failed, as people read it; absent after a success.
    [[nodiscard]] std::optional<std::string> lastProbeError() const;
    [[nodiscard]] std::optional<Instant> lastStatusLineAt() const { return m_readings.lastStatusLineAt(); }
    /// The moment of the last tick or recomputation.
    [[nodiscard]] Instant now() const { return m_now; }
    [[nodiscard]] const std::vector<HistorySample>& history() const { return m_readings.history(); }
    /// The recorded readings of a window's instance, as stored.
    [[nodiscard]] std::vector<HistorySample> samples(const UsageWindow& window) const;
    [[nodiscard]] const std::optional<SessionWeekRatio>& sessionWeekRatio() const { return m_conclusions.ratio(); }
    [[nodiscard]] const std::optional<VornSteer>& steer() const { return m_conclusions.steer(); }
    [[nodiscard]] const ResetPlan& resetPlan() const { return m_plan.plan(); }
    [[nodiscard]] bool isDemo() const { return m_isDemo; }
    [[nodiscard]] const UsageState& state() const { return m_readings.state(); }
    // Null when there is none; valid until the next recomputation.
    [[nodiscard]] const WindowAssessment* session() const { return m_conclusions.find(WindowKind::session()); }
    [[nodiscard]] const WindowAssessment* week() const { return m_conclusions.find(WindowKind::week()); }
    [[nodiscard]] const WindowAssessment* steerAssessment() const {
        return steer() ? m_conclusions.find(steer()->kind) : nullptr;
    }

signals:
    /// The answer may be another one, and every getter gives what belongs to it.
    void changed();

private:
    void tick();
    [[nodiscard]] bool isAhead(Instant stamp) const;
    [[nodiscard]] Seconds refreshInterval() const;
    [[nodiscard]] bool mayJudge() const;
    [[nodiscard]] bool isWorthAsking() const;
    [[nodiscard]] bool mayAskAgain() const;
    [[nodiscard]] bool askedLately() const;
    void finishProbe(const ProbeSource::Answer& answer);
    void scanActivity();
    void editPlan(const PlanKeeper::Change& change);

    Preferences& m_preferences;
    std::unique_ptr<ModelClock> m_clock;
    std::unique_ptr<Ticker> m_ticker;
    std::unique_ptr<ProbeSource> m_probe;
    ActivityKeeper m_activity;
    BackgroundQueue m_disk;
    Readings m_readings;
    PlanKeeper m_plan;

    Phase m_phase;
    Conclusions m_conclusions;
    Instant m_now;
    std::optional<Instant> m_lastRecompute;
    int m_ticks = 0;  ///< Since the start.
    bool m_isProbing = false;
    bool m_owesProbe = false;  ///< When the running one has ended.
    bool m_isBreakdownShown = false;
    bool m_isDemo = false;
};

}  // namespace vorn
