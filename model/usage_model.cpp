#include "model/usage_model.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "model/preferences/preferences.hpp"

namespace vorn {
namespace {

constexpr Seconds kScanInterval{30};
constexpr Seconds kRecomputeInterval{30};
/// A reading older than this is refreshed when somebody looks.
constexpr Seconds kStaleAge{60};
/// No two questions of any Vorn are closer than this unless the user asks.
constexpr Seconds kLeastRest{120};
/// How many ticks a verdict waits for the first scan: rates from local activity tell another story than the history
/// does, and a transcript folder on a dead network drive may never be read.
constexpr int kScanPatience = 2;

}  // namespace

Seconds UsageModel::refreshInterval() const {
    return std::chrono::duration<double, std::ratio<60>>(m_preferences.refreshMinutes());
}

UsageModel::UsageModel(Preferences& preferences, ModelParts parts, QObject* parent)
    : QObject(parent),
      m_preferences(preferences),
      m_clock(std::move(parts.clock)),
      m_ticker(std::move(parts.ticker)),
      m_probe(std::move(parts.probe)),
      m_activity(std::move(parts.activity)),
      m_readings(std::move(parts.snapshot), std::move(parts.history), std::move(parts.probeRecord),
                 std::move(parts.outcomes), *m_clock, m_disk),
      m_plan(std::move(parts.resetPlan)),
      m_now(m_clock->now()) {
    m_readings.onNews = [this] {
        recompute();
    };
    m_plan.refresh(m_now);
}

UsageModel::~UsageModel() = default;

void UsageModel::start() {
    m_readings.readRecord();
    m_readings.load();
    m_readings.readSnapshot();
    recompute();
    probe();
    scanActivity();
    m_ticker->start(tickInterval, [this] { tick(); });
}

void UsageModel::shutDown() {
    if (m_ticker) {
        m_ticker->stop();
    }
    if (m_probe) {
        m_probe->shutDown(shutdownPatience);
    }
    static_cast<void>(m_disk.waitForJobs(shutdownPatience));
}

// ---- What happens when ----

/// A time stamp from before the clock was set back must not hold anything up until the clock has caught up.
bool UsageModel::isAhead(Instant stamp) const {
    return stamp > m_now + kClockSlack;
}

void UsageModel::tick() {
    m_now = m_clock->now();
    ++m_ticks;
    const bool hasNewPlan = m_plan.refresh(m_now);
    const bool hasNewRecord = m_readings.readRecord();
    const bool hasNewSnapshot = m_readings.readSnapshot();
    const auto scanned = m_activity.lastScan();
    if (m_preferences.useLocalActivity() && (!scanned || isAhead(*scanned) || m_now - *scanned > kScanInterval)) {
        scanActivity();
    }
    if (isProbeDue(m_readings.asked(), refreshInterval(), m_now) || (isWorthAsking() && mayAskAgain())) {
        probe();
    }
    const bool isRecomputeDue =
        !m_lastRecompute || isAhead(*m_lastRecompute) || m_now - *m_lastRecompute >= kRecomputeInterval;
    if (hasNewPlan || hasNewRecord || hasNewSnapshot || isRecomputeDue || m_ticks == kScanPatience) {
        recompute();
    }
}

/// What is shown may be wrong by more than figures change between two regular questions.
bool UsageModel::isWorthAsking() const {
    return m_readings.hasOpenDoubt() || answer().hasBurst();
}

/// Not in the rest after a failure, and not soon after anybody asked: the service refuses who asks every minute.
bool UsageModel::mayAskAgain() const {
    const ProbeRecord& asked = m_readings.asked();
    return asked.consecutiveFailures == 0 && !askedLately();
}

bool UsageModel::askedLately() const {
    const auto last = lastProbeAt();
    const Instant now = m_clock->now();
    return last && now - *last < kLeastRest && !(*last > now + kClockSlack);
}

void UsageModel::refreshForViewer() {
    if (!askedLately()) {
        refreshIfStale();
    }
}

void UsageModel::refreshIfStale() {
    const auto freshest = std::max(lastProbeAt(), lastStatusLineAt());
    const Instant now = m_clock->now();
    if (!freshest || now - *freshest > kStaleAge || *freshest > now + kClockSlack) {
        probe();
    }
}

// ---- Asking the client ----

void UsageModel::probe() {
    if (m_isProbing || m_isDemo) {
        return;
    }
    m_isProbing = true;
    m_conclusions.noteAsking(true);
    emit changed();
    const ClientQuestion question{.claudePath = m_preferences.claudePathOverride().toStdString(),
                                  .wantsBreakdown = m_isBreakdownShown};
    m_probe->run(question, [this](const ProbeSource::Answer& answer) { finishProbe(answer); });
}

void UsageModel::probeAnew() {
    m_owesProbe = m_isProbing;
    probe();
}

void UsageModel::finishProbe(const ProbeSource::Answer& answer) {
    if (m_isDemo) {
        return;
    }
    if (const auto* said = std::get_if<ClientAnswer>(&answer)) {
        m_readings.takeAnswer(*said);
        m_phase = {.kind = Phase::Kind::ready};
    } else {
        m_readings.takeFailure(std::get<ProbeFailure>(answer));
        if (state().windows().empty()) {
            m_phase = {.kind = Phase::Kind::failed, .message = *lastProbeError()};
        }
    }
    m_isProbing = false;
    recompute();
    if (std::exchange(m_owesProbe, false)) {
        probe();
    }
}

std::optional<std::string> UsageModel::lastProbeError() const {
    const auto& failure = m_readings.asked().failure;
    return failure ? std::optional(description(*failure)) : std::nullopt;
}

// ---- Local activity ----

void UsageModel::scanActivity() {
    m_activity.scan(m_clock->now(), [this] {
        m_readings.takeRefusals(activity().refusals());
        recompute();
    });
}

const ActivitySummary& UsageModel::activity() const {
    static const ActivitySummary nothing;
    return m_activity.summary() ? *m_activity.summary() : nothing;
}

// ---- What follows from the readings ----

/// Nothing may be concluded while the activity that rates are formed from is being read for the first time.
bool UsageModel::mayJudge() const {
    return m_activity.summary() || !m_preferences.useLocalActivity() || m_ticks >= kScanPatience;
}

void UsageModel::recompute() {
    m_now = m_clock->now();
    m_lastRecompute = m_now;
    m_plan.retry(m_now);
    if (!state().windows().empty()) {
        m_phase = {.kind = Phase::Kind::ready};  // whatever source they came from
    }
    Asking asking = m_readings.asking(refreshInterval());
    asking.isRunning = m_isProbing;
    asking.hasAnswered = m_phase.kind == Phase::Kind::ready;
    m_conclusions.draw({.readings = m_readings,
                        .activity = m_activity,
                        .plan = m_plan,
                        .useActivity = m_preferences.useLocalActivity(),
                        .mayJudge = mayJudge(),
                        .isDemo = m_isDemo,
                        .asking = std::move(asking)},
                       m_now);
    emit changed();
}

std::vector<HistorySample> UsageModel::samples(const UsageWindow& window) const {
    std::vector<HistorySample> matching;
    std::ranges::copy_if(history(), std::back_inserter(matching),
                         [&](const HistorySample& sample) { return sample.sameWindow(window); });
    return matching;
}

// ---- The reset plan ----

void UsageModel::editPlan(const PlanKeeper::Change& change) {
    m_plan.edit(change, m_clock->now());
    recompute();
}

void UsageModel::addPlannedReset(const PlannedReset& reset) {
    editPlan([reset](ResetPlan& plan) { plan.planned.push_back(reset); });
}

void UsageModel::removePlannedReset(const std::string& id) {
    editPlan([id](ResetPlan& plan) { std::erase_if(plan.planned, [&](const auto& reset) { return reset.id == id; }); });
}

void UsageModel::setBankedResets(std::int64_t count) {
    editPlan([count](ResetPlan& plan) { plan.banked = count; });
}

void UsageModel::redeemReset(PlannedReset::Scope scope) {
    m_readings.announceReset(scope);
    editPlan([](ResetPlan& plan) { plan.banked = std::max<std::int64_t>(0, plan.banked - 1); });
    probe();
}

void UsageModel::redeemedElsewhere(PlannedReset::Scope scope) {
    if (m_isDemo) {
        return;
    }
    m_readings.readRecord();
    m_plan.refresh(m_clock->now());
    m_readings.announceReset(scope);
    recompute();
    probe();
}

// ---- The demonstration ----

void UsageModel::startDemo(const demo::Demo& demo) {
    m_isDemo = true;
    if (m_ticker) {
        m_ticker->stop();
    }
    m_readings.replace(demo.windows, demo.insights, demo.history);
    m_activity.replace(ActivitySummary(demo.activity));
    m_plan.replace(demo.plan);
    m_isProbing = false;
    m_conclusions = {};
    recompute();
}

}  // namespace vorn
