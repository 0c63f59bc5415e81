#include "cli/evidence_reader.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/probing_turn.hpp"
#include "core/analysis/outcomes.hpp"
#include "core/data/breakdown_file.hpp"
#include "core/data/history/history_store.hpp"
#include "core/data/ledger.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/shared_choices.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/status_line/more_limits.hpp"
#include "core/status_line/status_line_snapshot.hpp"
#include "core/usage_command/claude_locator.hpp"
#include "core/usage_command/client_question.hpp"
#include "core/usage_command/probe_error.hpp"

namespace vorn::cli {
namespace {

/// For another process that is writing the history: what is not written when this one ends is lost.
constexpr std::chrono::milliseconds kPatience{2000};

/// One look at everything: what is known so far and what may still be done about it.
class Look {
public:
    Look(const EvidenceRequest& request, RecordKeeper& records, const Cancellation& cancellation)
        : m_request(request),
          m_cancellation(cancellation),
          m_records(records),
          m_record(records.load()),
          m_history(VornPaths::history(), HistoryStore::defaultRetention, HistoryStore::defaultHeartbeat, kPatience) {}

    /// What is known without asking.
    void gather();
    /// Whether the client is to be asked; where it is not since it failed, that is noted.
    bool wantsAnswer();
    /// Whether another program has asked since this one looked.
    [[nodiscard]] bool isOvertaken() const;
    void ask();
    [[nodiscard]] Evidence evidence() const;
    /// What the transcripts tell of refused turns.
    void takeRefusals(Evidence& evidence);

    [[nodiscard]] Instant now() const { return m_request.now.value_or(systemNow()); }
    [[nodiscard]] bool mayWrite() const { return !m_request.now && !m_request.storesNothing; }
    [[nodiscard]] const std::vector<HistorySample>& samples() const { return m_samples; }

private:
    [[nodiscard]] Seconds staleAfter() const { return m_request.staleAfter.value_or(m_choices.refresh); }
    [[nodiscard]] bool isFresh(std::optional<Instant> reading, Seconds lifetime) const;
    [[nodiscard]] bool modelsAreFresh() const;
    [[nodiscard]] std::optional<std::filesystem::path> locateClient() const;
    [[nodiscard]] bool hasTurnedUp() const;
    [[nodiscard]] ClientAnswer runClient() const;
    void takeAnswer(const ClientAnswer& answer);
    void store(const std::vector<UsageWindow>& believed);
    void remember(const std::function<void(ProbeRecord&)>& change = {});
    void addJudgement(ProbeRecord& record) const;

    const EvidenceRequest& m_request;
    const Cancellation& m_cancellation;
    RecordKeeper& m_records;
    const SharedChoices m_choices = loadSharedChoices(VornPaths::sharedChoices());
    ProbeRecord m_record;
    const std::optional<Instant> m_askedBefore = m_record.lastProbeAt;  ///< As it was at the start.
    const std::set<WindowKind> m_announced = m_record.expectedResets;   ///< Likewise: what the ledger was told.
    HistoryStore m_history;
    std::vector<HistorySample> m_samples;  ///< What the history holds; copied no more often than it changes.
    Ledger m_ledger;
    std::vector<Outcome> m_moved;
    Asking m_asking;
    bool m_isSaved = true;  ///< The file has the whole history.
};

void Look::gather() {
    m_samples = m_history.all();
    if (!mayWrite()) {
        std::erase_if(m_samples, [&](const HistorySample& sample) { return sample.observedAt > now(); });
    }
    m_ledger.begin(m_history.newestCurrent(now()), now());
    m_ledger.takeRecord(m_record, m_announced, now());
    m_ledger.setInsights(loadBreakdown(now()));
    m_asking.hasAnswered = m_record.lastProbeAt && !m_record.failure && m_record.readings.empty();
    const auto snapshot = StatusLineSnapshot::read(VornPaths::statusLineSnapshot());
    const auto more = readMoreLimits(VornPaths::moreLimits());
    std::vector<UsageWindow> told = snapshot ? snapshot->windows() : std::vector<UsageWindow>();
    if (more) {
        told.insert(told.end(), more->limits.windows.begin(), more->limits.windows.end());
        m_ledger.takeOthers(more->limits.others);
    }
    if (!told.empty()) {
        const Ledger::Taken taken = m_ledger.takeSnapshot(believable(told, now()), now());
        m_moved = taken.moved;
        store(taken.toRecord);
        if (taken.isMemoryChanged) {
            remember();
        }
    }
}

/// A reading from the future (the clock was set back) says nothing about now.
bool Look::isFresh(std::optional<Instant> reading, Seconds lifetime) const {
    return reading && *reading <= now() && now() - *reading <= lifetime;
}

/// The status line never tells about single models. Where there are such limits the client is asked for them as often
/// as it would be without the status line, whether or not it still has an answer.
bool Look::modelsAreFresh() const {
    const Seconds lifetime = std::max(m_choices.refresh, staleAfter());
    if (m_record.consecutiveFailures == 0 && isFresh(m_record.lastProbeAt, lifetime)) {
        return true;
    }
    return std::ranges::all_of(m_ledger.state().windows(), [&](const auto& entry) {
        const UsageWindow& window = entry.second;
        return window.kind.which() != WindowKind::Case::weekModel || window.hasReset(now()) ||
               isFresh(window.observedAt, lifetime);
    });
}

bool Look::wantsAnswer() {
    if (m_request.probing != Probing::whenStale) {
        return m_request.probing == Probing::always;
    }
    // Where a fall is doubted only the client's word counts.
    const auto newest = m_ledger.doubts() ? m_record.lastProbeAt : m_ledger.state().lastObservedAt();
    if (isFresh(newest, staleAfter()) && modelsAreFresh()) {
        return false;
    }
    if (mayRetryProbe(m_record, m_choices.refresh, now()) || hasTurnedUp()) {
        return true;
    }
    m_asking.failure = m_record.failure.value_or(ProbeFailure());
    m_asking.retryAt = *m_record.lastProbeAt + probeInterval(m_record.consecutiveFailures, m_choices.refresh);
    return false;
}

bool Look::isOvertaken() const {
    return m_request.probing != Probing::always && m_records.load().lastProbeAt != m_askedBefore;
}

std::optional<std::filesystem::path> Look::locateClient() const {
    return ClaudeLocator::locate(m_request.claudePath.value_or(m_choices.claudePath));
}

/// Whether the client that was missing is there now: one that has never been asked needs no rest.
bool Look::hasTurnedUp() const {
    return m_record.failure && m_record.failure->kind == ProbeFailure::Kind::claudeNotFound && locateClient();
}

ClientAnswer Look::runClient() const {
    const ClientQuestion question{.claudePath = m_request.claudePath.value_or(m_choices.claudePath),
                                  .wantsBreakdown = m_request.wantsBreakdown,
                                  .storesNothing = !mayWrite()};
    return question.ask([this] { return now(); }, &m_cancellation);
}

void Look::ask() {
    try {
        takeAnswer(runClient());
    } catch (const ProbeError& error) {
        m_asking.failure = error.failure();
        remember([&](ProbeRecord& record) { record = record.afterFailure(now(), error.failure()); });
    }
}

void Look::takeAnswer(const ClientAnswer& answer) {
    m_asking.hasAnswered = true;
    const Ledger::Taken taken = m_ledger.takeAnswer(answer, now());
    m_moved = taken.moved;
    store(taken.toRecord);
    if (mayWrite()) {
        saveBreakdown(m_ledger.state().insights());
    }
    remember([&](ProbeRecord& record) { record = record.afterAnswer(answer, now()); });
}

void Look::store(const std::vector<UsageWindow>& believed) {
    if (!mayWrite() || m_history.add(believed, now()).empty()) {
        return;
    }
    m_samples = m_history.all();
    OutcomeStore(VornPaths::outcomes()).add(VornEngine::outcomes(m_samples, now()), now());
    m_isSaved = m_history.flush(now()).isSaved;
    m_samples = m_history.all();
}

/// What was announced and then seen is over: another fall is not what was meant. What another program announced
/// meanwhile stands.
void Look::addJudgement(ProbeRecord& record) const {
    ProbeRecord judged = record;
    m_ledger.remember(judged);
    record.pendingDrops = std::move(judged.pendingDrops);
    record.missing = std::move(judged.missing);
    record.others = std::move(judged.others);
    record.account = std::move(judged.account);
    std::erase_if(record.expectedResets, [&](const WindowKind& kind) {
        return m_announced.contains(kind) && !judged.expectedResets.contains(kind);
    });
}

void Look::remember(const std::function<void(ProbeRecord&)>& change) {
    const auto edit = [&](ProbeRecord& record) {
        addJudgement(record);
        if (change) {
            change(record);
        }
    };
    if (mayWrite()) {
        m_record = m_records.edit(edit);
    } else {
        edit(m_record);
        m_records.hold(m_record);
    }
}

Evidence Look::evidence() const {
    Evidence evidence{.windows = m_ledger.windows(now()),
                      .others = m_ledger.others(),
                      .moved = m_moved,
                      .useActivity = m_choices.useLocalActivity,
                      .plan = ResetPlanStore(VornPaths::resetPlan()).load().pruned(now()),
                      .insights = m_ledger.state().insights(),
                      .asking = m_asking,
                      .unsaved = {.history = !m_isSaved}};
    evidence.asking.lastAt = m_record.lastProbeAt;
    evidence.asking.figuresOf = m_record.figuresOf;
    if (m_request.withRatio) {
        evidence.ratio = VornEngine::sessionWeekRatio(m_samples, VornEngine::kMinimumSessionPoints);
    }
    return evidence;
}

void Look::takeRefusals(Evidence& evidence) {
    const auto& refusals = evidence.activity->refusals();
    if (m_ledger.takeRefusals(refusals, now())) {
        evidence.windows = m_ledger.windows(now());
        if (mayWrite()) {
            OutcomeStore(VornPaths::outcomes()).add(outcomesOf(refusals), now());
        }
    }
}

/// How far back the transcripts have to be read; empty when no rate needs them.
std::optional<Seconds> lookback(const EvidenceRequest& request, const Evidence& evidence) {
    if (!evidence.useActivity) {
        return std::nullopt;
    }
    if (request.wholeWeek) {
        return WindowKind::week().length();
    }
    const bool isRunning = std::ranges::any_of(evidence.windows, [](const UsageWindow& window) {
        return window.kind.isSession() && window.resetsAt.has_value();
    });
    // Nothing older than a session can enter its rate, so nothing older is read.
    return isRunning ? std::optional(WindowKind::session().length()) : std::nullopt;
}

/// With every other program that wants to ask kept waiting. False when another one has asked first.
bool askInTurn(Look& look, const EvidenceRequest& request, const Cancellation& cancellation) {
    std::optional<FileLock> turn;
    if (look.mayWrite()) {
        // A user who wants an answer now need not wait.
        turn =
            takeProbingTurn(request.probing == Probing::always ? std::chrono::seconds{0} : kTurnPatience, cancellation);
    }
    if (look.isOvertaken()) {
        return false;
    }
    look.ask();
    return true;
}

}  // namespace

Evidence EvidenceReader::read(const EvidenceRequest& request) {
    for (;;) {
        Look look(request, m_records, m_cancellation);
        look.gather();
        if (look.wantsAnswer() && !askInTurn(look, request, m_cancellation)) {
            continue;
        }
        if (m_cancellation.isCancelled()) {
            throw Cancelled();
        }
        Evidence evidence = look.evidence();
        m_history.update(look.samples());
        evidence.history = &m_history;
        if (const auto span = lookback(request, evidence)) {
            if (!m_scanner) {
                m_scanner = std::make_unique<LocalActivityScanner>(LocalActivityScanner::defaultRoot(), *span);
            }
            m_scanner->update(look.now());
            evidence.activity = std::make_shared<ActivitySummary>(m_scanner->events(), m_scanner->refusals());
            look.takeRefusals(evidence);
        }
        return evidence;
    }
}

}  // namespace vorn::cli
