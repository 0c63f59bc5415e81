#include "cli/live_readings.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include <poll.h>

#include "cli/breakdown_file.hpp"
#include "core/data/history_store.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/shared_choices.hpp"
#include "core/data/usage_state.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/sources/claude_locator.hpp"
#include "core/sources/probe_error.hpp"
#include "core/sources/status_line_snapshot.hpp"
#include "core/sources/usage_command_probe.hpp"
#include "core/support/file.hpp"

namespace vorn::cli {
namespace {

constexpr Seconds kProbeTimeout{30};
/// For another process that is asking the client: as long as that may take, and some.
constexpr std::chrono::seconds kTurnPatience{35};
constexpr std::chrono::milliseconds kTurnPoll{50};
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

    /// What is known without asking.
    void gather() {
        m_samples = m_history.all();
        if (m_request.now) {
            std::erase_if(m_samples, [&](const HistorySample& sample) { return sample.observedAt > *m_request.now; });
        }
        m_state.merge(newestCurrent(m_samples, now()));
        m_state.merge(believable(m_record.readings, now()));
        // Announced after that answer was judged, so the next one is meant.
        m_state.expectReset(std::vector(m_announced.begin(), m_announced.end()));
        m_state.setInsights(loadBreakdown(now()));
        takeSnapshot();
    }

    /// Whether the client is to be asked; else why it is not, where that is because it failed.
    bool mayProbe() {
        if (m_request.probing != Probing::whenStale) {
            return m_request.probing == Probing::always;
        }
        if (isFresh(m_fallIsHeld ? m_record.lastProbeAt : m_state.lastObservedAt(), staleAfter()) && modelsAreFresh()) {
            return false;
        }
        if (mayRetryProbe(m_record, m_choices.refresh, now()) || hasTurnedUp()) {
            return true;
        }
        m_failure = ProbeFailure{
            .message = m_record.lastError,
            .advice = ProbeError::adviceFor(m_record.lastError),
            .retryAt = *m_record.lastProbeAt + probeInterval(m_record.consecutiveFailures, m_choices.refresh)};
        return false;
    }

    /// Keeps others from asking meanwhile, and waits while another does. Empty, and no reason not to ask, where there
    /// is no keeping them or the other one takes too long. A user who wants an answer now need not wait.
    [[nodiscard]] std::optional<FileLock> takeTurn() const try {
        if (!mayWrite()) {
            return std::nullopt;
        }
        VornPaths::ensureRoot();
        const auto patience = m_request.probing == Probing::always ? std::chrono::seconds{0} : kTurnPatience;
        const auto deadline = std::chrono::steady_clock::now() + patience;
        for (;;) {
            std::error_code error;
            auto turn = FileLock::acquire(VornPaths::probingLock(), std::chrono::milliseconds{0}, error);
            if (turn || error != std::errc::device_or_resource_busy || std::chrono::steady_clock::now() >= deadline) {
                return turn;
            }
            pollfd cancelled{.fd = m_cancellation.descriptor(), .events = POLLIN, .revents = 0};
            ::poll(&cancelled, 1, static_cast<int>(kTurnPoll.count()));
            throwIfCancelled();
        }
    } catch (const std::filesystem::filesystem_error&) {
        return std::nullopt;
    }

    /// Whether another program has asked since this one looked.
    [[nodiscard]] bool isOvertaken() const {
        return m_request.probing != Probing::always && !m_memory.unsaved &&
               m_records.load().lastProbeAt != m_lastProbeAt;
    }

    void probe() {
        try {
            const auto result = ask();
            take(result);
            remember([&](ProbeRecord& record) {
                forgetSeenResets(record);
                record = {.lastProbeAt = now(),
                          .readings = result.windows,
                          .expectedResets = std::move(record.expectedResets)};
            });
        } catch (const ProbeError& error) {
            m_failure = ProbeFailure{.message = error.what(), .advice = error.advice()};
            remember([&](ProbeRecord& record) { record = record.afterFailure(now(), error.what()); });
        }
    }

    /// What the run is about; it has nothing more to say afterwards.
    Readings collect() {
        throwIfCancelled();
        Readings readings{.windows = m_state.current(now()),
                          .insights = m_state.insights(),
                          .history = std::move(m_samples),
                          .plan = ResetPlanStore(VornPaths::resetPlan()).load().pruned(now()),
                          .failure = std::move(m_failure),
                          .isHistorySaved = m_isSaved};
        if (!m_choices.useLocalActivity) {
            return readings;
        }
        if (m_request.wholeWeek) {
            readings.activity = scan(WindowKind::week().length());
        } else if (sessionRateNeedsActivity(readings.windows)) {
            // Nothing older than a session can enter its rate, so nothing older is read.
            readings.activity = scan(WindowKind::session().length());
        }
        return readings;
    }

private:
    [[nodiscard]] Seconds staleAfter() const { return m_request.staleAfter.value_or(m_choices.refresh); }
    [[nodiscard]] Instant now() const { return m_request.now.value_or(systemNow()); }
    [[nodiscard]] bool mayWrite() const { return !m_request.now; }

    /// What the relay left, unless something newer is known.
    void takeSnapshot() {
        const auto snapshot = StatusLineSnapshot::read(VornPaths::statusLineSnapshot());
        const auto incoming = snapshot ? believable(snapshot->windows(), now()) : std::vector<UsageWindow>();
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
            record(believed);
        }
        if (m_state.expectingReset() != m_announced) {
            remember([this](ProbeRecord& record) { forgetSeenResets(record); });
        }
    }

    /// A reading from the future (the clock was set back) says nothing about now.
    [[nodiscard]] bool isFresh(std::optional<Instant> reading, Seconds lifetime) const {
        return reading && *reading <= now() && now() - *reading <= lifetime;
    }

    /// The status line never tells about single models. Where there are such limits the client is asked for them as
    /// often as it would be without the status line, whether or not it still has an answer.
    [[nodiscard]] bool modelsAreFresh() const {
        const Seconds lifetime = std::max(m_choices.refresh, staleAfter());
        if (m_record.consecutiveFailures == 0 && isFresh(m_record.lastProbeAt, lifetime)) {
            return true;
        }
        return std::ranges::all_of(m_state.windows(), [&](const auto& entry) {
            const UsageWindow& window = entry.second;
            return window.kind.which() != WindowKind::Case::weekModel || window.hasReset(now()) ||
                   isFresh(window.observedAt, lifetime);
        });
    }

    void throwIfCancelled() const {
        if (m_cancellation.isCancelled()) {
            throw Cancelled();
        }
    }

    [[nodiscard]] std::optional<std::filesystem::path> locateClient() const {
        return ClaudeLocator::locate(m_request.claudePath.value_or(m_choices.claudePath));
    }

    /// Whether the client that was missing is there now: one that has never been asked needs no rest.
    [[nodiscard]] bool hasTurnedUp() const {
        return m_record.lastError == ProbeError(ProbeError::Kind::claudeNotFound).what() && locateClient();
    }

    [[nodiscard]] UsageCommandParser::Result ask() const {
        const auto executable = locateClient();
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
            record(believed);
            saveBreakdown(m_state.insights());
        }
    }

    void record(const std::vector<UsageWindow>& believed) {
        m_history.add(believed, now());
        m_isSaved = m_history.flush(now()).isSaved;
        m_samples = m_history.all();
    }

    /// Another fall is not what was announced. What another program announced meanwhile stands.
    void forgetSeenResets(ProbeRecord& record) const {
        for (const WindowKind& kind : m_announced) {
            if (!m_state.expectingReset().contains(kind)) {
                record.expectedResets.erase(kind);
            }
        }
    }

    /// Where it cannot be written it still keeps this process from asking at every turn.
    template <typename Change>
    void remember(Change change) {
        if (mayWrite() && rememberForAll(change)) {
            m_memory.unsaved.reset();
            return;
        }
        change(m_record);
        m_memory.unsaved = m_record;
    }

    template <typename Change>
    bool rememberForAll(Change change) try {
        m_record = m_records.edit(
            [&](ProbeRecord& record) {
                record = m_memory.unsaved.value_or(record);
                change(record);
            },
            kPatience);
        return true;
    } catch (const std::filesystem::filesystem_error&) {
        return false;
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
    const SharedChoices m_choices = loadSharedChoices(VornPaths::sharedChoices());
    ProbeRecord m_record = m_memory.unsaved ? *m_memory.unsaved : m_records.load();
    const std::optional<Instant> m_lastProbeAt = m_record.lastProbeAt;  ///< As it was at the start.
    const std::set<WindowKind> m_announced = m_record.expectedResets;   ///< Likewise: what the state was told.
    UsageState m_state;
    bool m_fallIsHeld = false;  ///< The snapshot tells of an early reset that nothing has confirmed yet.
    std::optional<ProbeFailure> m_failure;
    bool m_isSaved = true;  ///< The file has the whole history.
};

}  // namespace

Readings readLive(const LiveRequest& request, LiveMemory& memory, const Cancellation& cancellation) {
    for (;;) {
        LiveRun run(request, memory, cancellation);
        run.gather();
        if (run.mayProbe()) {
            const auto turn = run.takeTurn();
            if (run.isOvertaken()) {
                continue;
            }
            run.probe();
        }
        return run.collect();
    }
}

}  // namespace vorn::cli
