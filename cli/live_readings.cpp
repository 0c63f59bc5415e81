#include "cli/live_readings.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/breakdown_file.hpp"
#include "core/data/history_store.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/usage_state.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/sources/claude_locator.hpp"
#include "core/sources/probe_error.hpp"
#include "core/sources/usage_command_probe.hpp"

namespace vorn::cli {
namespace {

/// How often a client is asked that answers; failures are spaced from it.
constexpr Seconds kRefresh{300};
constexpr Seconds kProbeTimeout{30};
/// For another process that is writing the history: what is not written when this one ends is lost.
constexpr std::chrono::milliseconds kPatience{2000};

/// One run: what is known so far and what it may still do.
class LiveRun {
public:
    LiveRun(const LiveRequest& request, LiveMemory& memory, const Cancellation& cancellation)
        : m_request(request),
          m_memory(memory),
          m_cancellation(cancellation),
          m_history(VornPaths::history(), HistoryStore::defaultRetention, HistoryStore::defaultHeartbeat, kPatience) {}

    Readings read() {
        m_samples = m_history.all();
        m_state.merge(newestCurrent(m_samples, now()));
        m_state.merge(lastAnswer());
        // Announced after that answer was judged, so the next one is meant.
        const std::vector expected(m_record.expectedResets.begin(), m_record.expectedResets.end());
        m_state.expectReset(expected);
        m_state.setInsights(loadBreakdown(now()));
        if (mayProbe()) {
            probe();
        }
        if (m_cancellation.isCancelled()) {
            throw Cancelled();
        }
        return collect();
    }

private:
    [[nodiscard]] Instant now() const { return m_request.now.value_or(systemNow()); }
    [[nodiscard]] bool mayWrite() const { return !m_request.now; }

    /// What of it can still be true: nothing of a clock that was ahead, and a window that is over only while another is
    /// not, so that a session does not vanish at its reset but stands at nothing used.
    [[nodiscard]] std::vector<UsageWindow> lastAnswer() const {
        std::vector<UsageWindow> answer;
        std::ranges::copy_if(m_record.readings, std::back_inserter(answer), [this](const UsageWindow& reading) {
            return reading.observedAt <= now() && now() - reading.observedAt < reading.kind.length();
        });
        const bool isOver =
            std::ranges::all_of(answer, [this](const UsageWindow& reading) { return reading.hasReset(now()); });
        return isOver ? std::vector<UsageWindow>() : answer;
    }

    bool mayProbe() {
        if (m_request.probing != Probing::whenStale) {
            return m_request.probing == Probing::always;
        }
        const auto newest = m_state.lastObservedAt();
        // A reading from the future (the clock was set back) says nothing about now.
        if (newest && *newest <= now() && now() - *newest <= m_request.staleAfter) {
            return false;
        }
        if (mayRetryProbe(m_record, kRefresh, now())) {
            return true;
        }
        m_failure =
            ProbeFailure{.message = m_record.lastError,
                         .advice = ProbeError::adviceFor(m_record.lastError),
                         .retryAt = *m_record.lastProbeAt + probeInterval(m_record.consecutiveFailures, kRefresh)};
        return false;
    }

    void probe() {
        try {
            auto result = ask();
            take(result);
            remember({.lastProbeAt = now(),
                      .readings = std::move(result.windows),
                      .expectedResets = m_state.expectingReset()});
        } catch (const ProbeError& error) {
            m_failure = ProbeFailure{.message = error.what(), .advice = error.advice()};
            remember(m_record.afterFailure(now(), error.what()));
        }
    }

    [[nodiscard]] UsageCommandParser::Result ask() const {
        const auto executable = ClaudeLocator::locate(m_request.claudePath);
        if (!executable) {
            throw ProbeError(ProbeError::Kind::claudeNotFound);
        }
        const UsageCommandProbe usage{.executable = *executable, .timeout = kProbeTimeout};
        return usage.run([this] { return now(); }, &m_cancellation);
    }

    /// Records what the state then holds, not what came: a stale low reading is held there.
    void take(const UsageCommandParser::Result& result) {
        m_state.merge(result.windows);
        m_state.setInsights(result.insights);
        std::vector<UsageWindow> believed;
        for (const UsageWindow& window : result.windows) {
            believed.push_back(m_state.windows().at(window.kind));
        }
        if (mayWrite()) {
            m_history.record(believed, now());
            m_samples = m_history.all();
            saveBreakdown(m_state.insights());
        }
    }

    /// Where it cannot be written it still keeps this process from asking at every turn.
    void remember(ProbeRecord record) {
        if (mayWrite() && m_records.save(record)) {
            m_memory.unsaved.reset();
        } else {
            m_memory.unsaved = std::move(record);
        }
    }

    Readings collect() {
        Readings readings{.windows = m_state.current(now()),
                          .insights = m_state.insights(),
                          .history = std::move(m_samples),
                          .plan = ResetPlanStore(VornPaths::resetPlan()).load().pruned(now()),
                          .failure = std::move(m_failure)};
        if (m_request.wholeWeek) {
            readings.activity = scan(WindowKind::week().length());
        } else if (sessionRateNeedsActivity(readings.windows)) {
            // Nothing older than a session can enter its rate, so nothing older is read.
            readings.activity = scan(WindowKind::session().length());
        }
        return readings;
    }

    [[nodiscard]] ActivitySummary scan(Seconds lookback) {
        if (!m_memory.scanner) {
            m_memory.scanner = std::make_unique<LocalActivityScanner>(LocalActivityScanner::defaultRoot(), lookback);
        }
        return ActivitySummary(m_memory.scanner->scan(now()));
    }

    static bool sessionRateNeedsActivity(const std::vector<UsageWindow>& windows) {
        return std::ranges::any_of(
            windows, [](const UsageWindow& window) { return window.kind.isSession() && window.resetsAt.has_value(); });
    }

    const LiveRequest& m_request;
    LiveMemory& m_memory;
    const Cancellation& m_cancellation;
    HistoryStore m_history;
    std::vector<HistorySample> m_samples;  ///< What the history holds; copied no more often than it changes.
    const ProbeRecordStore m_records{VornPaths::probeRecord()};
    const ProbeRecord m_record = m_memory.unsaved ? *m_memory.unsaved : m_records.load();
    UsageState m_state;
    std::optional<ProbeFailure> m_failure;
};

}  // namespace

Readings readLive(const LiveRequest& request, LiveMemory& memory, const Cancellation& cancellation) {
    return LiveRun(request, memory, cancellation).read();
}

}  // namespace vorn::cli
