#include "app/model/usage_model.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/model/preferences.hpp"
#include "core/analysis/assess.hpp"
#include "core/data/reset_plan.hpp"

namespace vorn {
namespace {

constexpr Seconds kScanInterval{30};
constexpr Seconds kRecomputeInterval{30};
/// A reading older than this is refreshed when somebody looks.
constexpr Seconds kStaleAge{60};
constexpr double kSteerSwitchMargin = 0.1;
constexpr double kMinimumSessionPoints = 20;

template <typename Assessments, typename Condition>
const WindowAssessment* findAssessment(const Assessments& assessments, const Condition& condition) {
    const auto found = std::ranges::find_if(assessments, condition);
    return found != assessments.end() ? &*found : nullptr;
}

}  // namespace

UsageModel::UsageModel(Preferences& preferences, Parts parts, QObject* parent)
    : QObject(parent),
      m_preferences(preferences),
      m_clock(std::move(parts.clock)),
      m_ticker(std::move(parts.ticker)),
      m_probe(std::move(parts.probe)),
      m_activitySource(std::move(parts.activity)),
      m_snapshot(std::move(parts.snapshot)),
      m_history(std::move(parts.history), m_disk),
      m_plan(std::move(parts.resetPlan)),
      m_probeMemory(std::move(parts.probeRecord), m_disk),
      m_now(m_clock->now()) {
    m_history.onFlushed = [this](bool isReplaced) {
        updateStorageProblem();
        if (isReplaced && !m_isDemo) {
            emit historyChanged();
        }
    };
    m_probeMemory.onNews = [this](const ProbeMemory::News& news) {
        if (takeRecord(news)) {
            recompute();
        }
    };
    m_plan.refresh(m_now);
}

UsageModel::~UsageModel() = default;

void UsageModel::start() {
    readRecord();
    m_history.load([this] { beginWithHistory(); });
    readSnapshot();
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

void UsageModel::tick() {
    publish(m_now, m_clock->now(), &UsageModel::nowChanged);
    const bool hasNewPlan = readPlan();
    const bool hasNewRecord = readRecord();
    const bool hasNewSnapshot = readSnapshot();
    if (m_preferences.useLocalActivity() && isScanDue()) {
        scanActivity();
    }
    if (isProbeDue()) {
        probe();
    }
    if (hasNewPlan || hasNewRecord || hasNewSnapshot || isRecomputeDue()) {
        recompute();
    }
}

/// A time stamp from before the clock was set back must not hold anything up until the clock has caught up.
bool UsageModel::isAhead(Instant stamp) const {
    return stamp > m_now + kClockSlack;
}

bool UsageModel::isProbeDue() const {
    if (m_isProbing) {
        return false;
    }
    const Seconds refresh = std::chrono::duration<double, std::ratio<60>>(m_preferences.refreshMinutes());
    return !m_lastProbeAt || isAhead(*m_lastProbeAt) ||
           m_now - *m_lastProbeAt >= probeInterval(m_consecutiveFailures, refresh);
}

bool UsageModel::isScanDue() const {
    return !m_lastActivityScan || isAhead(*m_lastActivityScan) || m_now - *m_lastActivityScan > kScanInterval;
}

bool UsageModel::isRecomputeDue() const {
    return !m_lastRecompute || isAhead(*m_lastRecompute) || m_now - *m_lastRecompute >= kRecomputeInterval;
}

void UsageModel::refreshIfStale() {
    if (m_isProbing || m_isDemo) {
        return;
    }
    const auto freshest = std::max(m_lastProbeAt, m_lastStatusLineAt);
    const Instant now = m_clock->now();
    if (!freshest || now - *freshest > kStaleAge || *freshest > now + kClockSlack) {
        probe();
    }
}

// ---- The status line ----

bool UsageModel::readSnapshot() {
    const auto stamp = m_snapshot->stamp();
    if (!stamp || stamp == m_lastSnapshot) {
        return false;
    }
    // Before parsing: what cannot be read is not tried again until it changes.
    m_lastSnapshot = stamp;
    const auto snapshot = m_snapshot->read();
    std::vector<UsageWindow> windows = snapshot ? snapshot->windows() : std::vector<UsageWindow>();
    const Instant latest = m_clock->now() + kClockSlack;
    std::erase_if(windows, [&](const UsageWindow& window) { return window.observedAt > latest; });
    if (windows.empty()) {
        return false;
    }
    publish(m_lastStatusLineAt, std::optional(std::ranges::max(windows, {}, &UsageWindow::observedAt).observedAt),
            &UsageModel::lastStatusLineAtChanged);
    ingest(windows);
    becomeReady();
    return true;
}

// ---- Asking the client ----

void UsageModel::probe() {
    if (m_isProbing || m_isDemo) {
        return;
    }
    publish(m_isProbing, true, &UsageModel::isProbingChanged);
    m_probe->run(m_preferences.claudePathOverride().toStdString(),
                 [this](ProbeSource::Answer answer) { finishProbe(std::move(answer)); });
}

void UsageModel::probeAnew() {
    m_owesProbe = m_isProbing;
    probe();
}

void UsageModel::finishProbe(ProbeSource::Answer answer) {
    if (m_isDemo) {
        return;
    }
    if (const auto* result = std::get_if<UsageCommandParser::Result>(&answer)) {
        succeed(*result);
    } else {
        fail(std::get<std::string>(answer));
    }
    publish(m_isProbing, false, &UsageModel::isProbingChanged);
    if (std::exchange(m_owesProbe, false)) {
        probe();
    }
}

void UsageModel::succeed(const UsageCommandParser::Result& result) {
    publish(m_lastProbeAt, std::optional(m_clock->now()), &UsageModel::lastProbeAtChanged);
    publish(m_lastProbeError, std::optional<std::string>(), &UsageModel::lastProbeErrorChanged);
    m_consecutiveFailures = 0;
    m_lastAnswer = result.windows;
    ingest(result.windows);
    if (result.insights && result.insights != m_state.insights()) {
        m_state.setInsights(result.insights);
        emit insightsChanged();
    }
    becomeReady();
    saveRecord();
    recompute();
}

void UsageModel::fail(const std::string& message) {
    publish(m_lastProbeAt, std::optional(m_clock->now()), &UsageModel::lastProbeAtChanged);
    publish(m_lastProbeError, std::optional(message), &UsageModel::lastProbeErrorChanged);
    ++m_consecutiveFailures;
    if (m_state.windows().empty()) {
        publish(m_phase, Phase{.kind = Phase::Kind::failed, .message = message}, &UsageModel::phaseChanged);
    }
    saveRecord();
    recompute();
}

void UsageModel::becomeReady() {
    publish(m_phase, Phase{.kind = Phase::Kind::ready}, &UsageModel::phaseChanged);
}

void UsageModel::saveRecord() {
    m_probeMemory.save({.lastProbeAt = m_lastProbeAt,
                        .consecutiveFailures = m_consecutiveFailures,
                        .lastError = m_lastProbeError.value_or(""),
                        .readings = m_lastAnswer,
                        .expectedResets = m_state.expectingReset()});
}

bool UsageModel::readRecord() {
    const auto news = m_probeMemory.read();
    return news && takeRecord(*news);
}

bool UsageModel::takeRecord(const ProbeMemory::News& news) {
    if (m_isDemo) {
        return false;
    }
    const ProbeRecord& record = news.record;
    const bool isNewer =
        record.lastProbeAt && record.lastProbeAt > m_lastProbeAt && *record.lastProbeAt <= m_clock->now() + kClockSlack;
    if (!isNewer) {
        expectReset({news.announced.begin(), news.announced.end()});
        return false;
    }
    publish(m_lastProbeAt, record.lastProbeAt, &UsageModel::lastProbeAtChanged);
    m_consecutiveFailures = record.consecutiveFailures;
    const bool isFailure = record.consecutiveFailures > 0;
    publish(m_lastProbeError, isFailure ? std::optional(record.lastError) : std::nullopt,
            &UsageModel::lastProbeErrorChanged);
    m_lastAnswer = record.readings;
    const auto readings = believable(record.readings, m_clock->now());
    ingest(readings, HistoryStore::Stored::byAnotherProcess);
    // Announced after that answer was judged, so the next one is meant.
    expectReset({news.announced.begin(), news.announced.end()});
    if (!readings.empty()) {
        becomeReady();
    }
    return true;
}

// ---- Local activity ----

void UsageModel::scanActivity() {
    if (m_isScanning || m_isDemo) {
        return;
    }
    const Instant now = m_clock->now();
    m_lastActivityScan = now;
    m_isScanning = true;
    m_activitySource->scan(now, [this](ActivitySource::Answer answer) {
        m_isScanning = false;
        if (answer && !m_isDemo) {
            m_hasScanned = true;
            m_activity = *std::move(answer);
            emit activityChanged();
            recompute();
        }
    });
}

const ActivitySummary* UsageModel::rateActivity() const {
    return m_preferences.useLocalActivity() && !m_isDemo ? &m_activity : nullptr;
}

// ---- Readings and their history ----

void UsageModel::ingest(const std::vector<UsageWindow>& windows, HistoryStore::Stored stored) {
    if (m_history.isLoaded()) {
        takeIn(windows, stored);
        return;
    }
    // Shown at once; judged and recorded when it is known what was before.
    m_state.merge(windows);
    m_earlyNews.push_back({.windows = windows, .stored = stored});
}

void UsageModel::takeIn(const std::vector<UsageWindow>& windows, HistoryStore::Stored stored) {
    const Instant now = m_clock->now();
    m_state.noticeTime(now);
    const auto expected = m_state.expectingReset();
    m_state.merge(windows);
    std::vector<UsageWindow> held;
    held.reserve(windows.size());
    for (const UsageWindow& window : windows) {
        held.push_back(m_state.windows().at(window.kind));
    }
    if (m_history.add(held, now, stored)) {
        emit historyChanged();
    }
    if (m_state.expectingReset() != expected) {
        saveRecord();  // seen: another fall is not what was announced
    }
}

void UsageModel::beginWithHistory() {
    if (m_isDemo) {
        return;
    }
    const UsageState early = std::exchange(m_state, UsageState());
    m_state.setInsights(early.insights());
    m_state.merge(newestCurrent(m_history.samples(), m_clock->now()));
    for (const EarlyNews& news : std::exchange(m_earlyNews, {})) {
        takeIn(news.windows, news.stored);
        m_state.expectReset(news.announced);
    }
    if (!m_state.windows().empty()) {
        becomeReady();
    }
    emit historyChanged();
    recompute();
}

std::vector<HistorySample> UsageModel::samples(const UsageWindow& window) const {
    std::vector<HistorySample> matching;
    std::ranges::copy_if(history(), std::back_inserter(matching),
                         [&](const HistorySample& sample) { return sample.sameWindow(window); });
    return matching;
}

// ---- What follows from the readings ----

void UsageModel::recompute() {
    publish(m_now, m_clock->now(), &UsageModel::nowChanged);
    m_lastRecompute = m_now;
    m_state.noticeTime(m_now);
    if (!m_isDemo && m_plan.retry(m_now)) {
        emit resetPlanChanged();
    }
    assess();
    updateSteer();
    updateRatio();
    updateStorageProblem();
    emit changed();
}

void UsageModel::assess() {
    const std::vector<UsageWindow> windows = m_state.current(m_now);
    std::vector<WindowAssessment> assessments;
    assessments.reserve(windows.size());
    for (const UsageWindow& window : windows) {
        const MatchingSamples matching = historyIndex().matching(window);
        assessments.push_back(VornEngine::assess(window, {.history = matching,
                                                          .activity = rateActivity(),
                                                          .now = m_now,
                                                          .plannedResetAt = resetPlan().horizon(window, m_now)}));
    }
    publish(m_assessments, std::move(assessments), &UsageModel::assessmentsChanged);
}

void UsageModel::updateSteer() {
    auto steer = VornEngine::steer(m_assessments, m_bindingKind, kSteerSwitchMargin);
    m_bindingKind = steer ? std::optional(steer->kind) : std::nullopt;
    publish(m_steer, std::move(steer), &UsageModel::steerChanged);
}

void UsageModel::updateRatio() {
    if (history().size() == m_ratioHistoryCount) {
        return;
    }
    m_ratioHistoryCount = history().size();
    publish(m_sessionWeekRatio, VornEngine::sessionWeekRatio(history(), kMinimumSessionPoints),
            &UsageModel::sessionWeekRatioChanged);
}

void UsageModel::updateStorageProblem() {
    std::optional<std::string> problem;
    if (!m_isDemo && m_history.isUnsaved()) {
        problem = "The history cannot be saved.";
    } else if (!m_isDemo && !m_plan.problem().empty()) {
        problem = "The reset plan cannot be saved: " + m_plan.problem();
    }
    publish(m_storageProblem, std::move(problem), &UsageModel::storageProblemChanged);
}

const WindowAssessment* UsageModel::session() const {
    return findAssessment(m_assessments, [](const auto& entry) { return entry.window.kind.isSession(); });
}

const WindowAssessment* UsageModel::week() const {
    return findAssessment(m_assessments, [](const auto& entry) { return entry.window.kind == WindowKind::week(); });
}

const WindowAssessment* UsageModel::steerAssessment() const {
    return m_steer
               ? findAssessment(m_assessments, [&](const auto& entry) { return entry.window.kind == m_steer->kind; })
               : nullptr;
}

// ---- The reset plan ----

bool UsageModel::readPlan() {
    const bool isNew = m_plan.refresh(m_clock->now());
    if (isNew) {
        emit resetPlanChanged();
    }
    return isNew;
}

void UsageModel::editPlan(const std::function<void(ResetPlan&)>& change) {
    if (m_plan.edit(change, m_clock->now())) {
        emit resetPlanChanged();
    }
    recompute();
}

void UsageModel::addPlannedReset(const PlannedReset& reset) {
    editPlan([reset](ResetPlan& plan) { plan.planned.push_back(reset); });
}

void UsageModel::removePlannedReset(const std::string& id) {
    editPlan([id](ResetPlan& plan) {
        std::erase_if(plan.planned, [&](const PlannedReset& reset) { return reset.id == id; });
    });
}

void UsageModel::setBankedResets(std::int64_t count) {
    editPlan([count](ResetPlan& plan) { plan.banked = count; });
}

void UsageModel::redeemReset(PlannedReset::Scope scope) {
    expectReset(scope);
    editPlan([](ResetPlan& plan) { plan.banked = std::max<std::int64_t>(0, plan.banked - 1); });
    probe();
}

void UsageModel::redeemedElsewhere(PlannedReset::Scope scope) {
    if (m_isDemo) {
        return;
    }
    readRecord();
    readPlan();
    expectReset(scope);
    recompute();
    probe();
}

void UsageModel::expectReset(PlannedReset::Scope scope) {
    std::vector<WindowKind> covered;
    for (const auto& [kind, window] : m_state.windows()) {
        if (PlannedReset{.scope = scope}.covers(kind)) {
            covered.push_back(kind);
        }
    }
    expectReset(std::move(covered));
    if (!m_isDemo) {
        saveRecord();
    }
}

void UsageModel::expectReset(std::vector<WindowKind> kinds) {
    m_state.expectReset(kinds);
    if (!m_history.isLoaded()) {
        m_earlyNews.push_back({.announced = std::move(kinds)});
    }
}

// ---- The demonstration ----

void UsageModel::startDemo(const demo::Demo& demo) {
    publish(m_isDemo, true, &UsageModel::isDemoChanged);
    if (m_ticker) {
        m_ticker->stop();
    }
    m_state = UsageState();
    m_state.merge(demo.windows);
    m_state.setInsights(demo.insights);
    emit insightsChanged();
    m_history.replace(demo.history);
    m_ratioHistoryCount = 0;
    emit historyChanged();
    m_activity = ActivitySummary(demo.activity);
    emit activityChanged();
    m_plan.replace(demo.plan);
    emit resetPlanChanged();
    m_bindingKind.reset();
    publish(m_isProbing, false, &UsageModel::isProbingChanged);
    publish(m_lastProbeAt, std::optional<Instant>(), &UsageModel::lastProbeAtChanged);
    publish(m_lastProbeError, std::optional<std::string>(), &UsageModel::lastProbeErrorChanged);
    publish(m_lastStatusLineAt, m_state.lastObservedAt(), &UsageModel::lastStatusLineAtChanged);
    becomeReady();
    recompute();
}

}  // namespace vorn
