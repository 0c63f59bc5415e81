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
#include "core/sources/status_line_snapshot.hpp"
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
        m_state.merge(believable(m_record.readings));
        // Announced after that answer was judged, so the next one is meant.
        const std::vector expected(m_record.expectedResets.begin(), m_record.expectedResets.end());
        m_state.expectReset(expected);
        m_state.setInsights(loadBreakdown(now()));
        takeSnapshot();
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

    /// What of an earlier answer can still be true: nothing of a clock that was ahead, and a window that is over only
    /// while another is not, so that a session does not vanish at its reset but stands at nothing used.
    [[nodiscard]] std::vector<UsageWindow> believable(const std::vector<UsageWindow>& readings) const {
        std::vector<UsageWindow> answer;
        std::ranges::copy_if(readings, std::back_inserter(answer), [this](const UsageWindow& reading) {
            return reading.observedAt <= now() && now() - reading.observedAt < reading.kind.length();
        });
        const bool isOver =
            std::ranges::all_of(answer, [this](const UsageWindow& reading) { return reading.hasReset(now()); });
        return isOver ? std::vector<UsageWindow>() : answer;
    }

    /// What the relay left, unless something newer is known.
    void takeSnapshot() {
        const auto snapshot = StatusLineSnapshot::read(VornPaths::statusLineSnapshot());
        const auto incoming = snapshot ? believable(snapshot->windows()) : std::vector<UsageWindow>();
        m_state.merge(incoming);
        std::vector<UsageWindow> believed;
        for (const UsageWindow& reading : incoming) {
            const UsageWindow& held = m_state.windows().at(reading.kind);
            if (held.observedAt != reading.observedAt) {
                continue;
            }
            if (held.usedPercent - reading.usedPercent >= UsageState::resetDrop) {
                // Not recorded, so that the client's answer, which is kept as it was read, stays the newest and can
                // confirm the fall in a later run.
                m_fallIsHeld = true;
            } else {
                believed.push_back(held);
            }
        }
        if (mayWrite() && !believed.empty()) {
            m_history.record(believed, now());
            m_samples = m_history.all();
        }
        if (m_state.expectingReset() != m_record.expectedResets) {
            m_record.expectedResets = m_state.expectingReset();  // seen: another fall is not what was announced
            remember(m_record);
        }
    }

    bool mayProbe() {
        if (m_request.probing != Probing::whenStale) {
            return m_request.probing == Probing::always;
        }
        if (isFresh(m_fallIsHeld ? m_record.lastProbeAt : m_state.lastObservedAt(), m_request.staleAfter) &&
            modelsAreFresh()) {
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

    /// A reading from the future (the clock was set back) says nothing about now.
    [[nodiscard]] bool isFresh(std::optional<Instant> reading, Seconds lifetime) const {
        return reading && *reading <= now() && now() - *reading <= lifetime;
    }

    /// The status line never tells about single models. Where there are such limits the client is asked for them as
    /// often as it would be without the status line.
    [[nodiscard]] bool modelsAreFresh() const {
        return std::ranges::all_of(m_state.windows(), [this](const auto& entry) {
            const UsageWindow& window = entry.second;
            return window.kind.which() != WindowKind::Case::weekModel || window.hasReset(now()) ||
                   isFresh(window.observedAt, std::max(kRefresh, m_request.staleAfter));
        });
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
    ProbeRecord m_record = m_memory.unsaved ? *m_memory.unsaved : m_records.load();
    UsageState m_state;
    bool m_fallIsHeld = false;  ///< The snapshot tells of an early reset that nothing has confirmed yet.
    std::optional<ProbeFailure> m_failure;
};

}  // namespace

Readings readLive(const LiveRequest& request, LiveMemory& memory, const Cancellation& cancellation) {
    return LiveRun(request, memory, cancellation).read();
}

}  // namespace vorn::cli
