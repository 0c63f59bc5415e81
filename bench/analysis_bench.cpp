// What recomputing the answer costs, beside what merely walking or sorting the same history costs. The argument is the
// number of samples in the history.
#include <algorithm>
#include <chrono>
#include <cmath>

#include <benchmark/benchmark.h>

#include "core/analysis/assess.hpp"
#include "core/analysis/forecast/forecast.hpp"
#include "core/analysis/forecast/learn_rhythm.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/rate_reading.hpp"
#include "core/analysis/session_week_ratio.hpp"
#include "core/analysis/steer.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

const Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 12h;
constexpr Seconds kRetention = 8 * 24h;
/// The running session began this long ago; the running week is all but over, so nearly all of the history is its own.
constexpr Seconds kSessionAge = 4h;
constexpr Seconds kWeekAge = 160h;

/// The window as read at `at`: it rises evenly from reset to reset.
UsageWindow readAt(const WindowKind& kind, Instant at) {
    const Instant start = kNow - (kind.isSession() ? kSessionAge : kWeekAge);
    const Seconds length = kind.length();
    const Instant instanceStart = start + std::floor((at - start) / length) * length;
    return {.kind = kind,
            .usedPercent = std::floor(90 * ((at - instanceStart) / length)),
            .resetsAt = instanceStart + length,
            .observedAt = at};
}

std::vector<UsageWindow> windowsAt(Instant at) {
    return {readAt(WindowKind::session(), at), readAt(WindowKind::week(), at),
            readAt(WindowKind::weekModel("Opus"), at), readAt(WindowKind::weekModel("Sonnet"), at)};
}

/// `count` samples from `start` to `end`, all four windows a turn.
std::vector<HistorySample> historyBetween(Instant start, Instant end, std::int64_t count) {
    std::vector<HistorySample> history;
    const std::int64_t turns = count / 4;
    for (std::int64_t turn = 0; turn < turns; ++turn) {
        const Instant at = start + (end - start) * (static_cast<double>(turn) / static_cast<double>(turns));
        for (const UsageWindow& window : windowsAt(at)) {
            history.push_back(HistorySample::of(window));
        }
    }
    return history;
}

std::vector<HistorySample> fullHistory(const benchmark::State& state) {
    return historyBetween(kNow - kRetention, kNow, state.range(0));
}

ActivitySummary someActivity() {
    std::vector<ActivityEvent> events;
    for (int i = 0; i < 20'000; ++i) {
        events.push_back({.timestamp = kNow - 30s * i, .model = "sonnet", .cwd = "/p", .tokens = {.input = 100}});
    }
    return ActivitySummary(std::move(events));
}

/// Everything that is published on a tick, the ratio apart.
void recompute(const HistoryIndex& index, const std::vector<UsageWindow>& windows, const ActivitySummary& activity) {
    std::vector<WindowAssessment> assessments;
    for (const UsageWindow& window : windows) {
        const MatchingSamples history = index.matching(window);
        assessments.push_back(VornEngine::assess(window, {
                                                             .history = history,
                                                             .activity = &activity,
                                                             .now = kNow,
                                                         }));
        benchmark::DoNotOptimize(VornEngine::rates(window, history, &activity, kNow));
    }
    benchmark::DoNotOptimize(VornEngine::headline(assessments));
    benchmark::DoNotOptimize(VornEngine::steer(assessments, WindowKind::week(), 0.1));
}

/// As a long-lived program does it: the index is kept, and nothing was added since.
void recomputeOn(const std::vector<HistorySample>& history, benchmark::State& state) {
    const ActivitySummary activity = someActivity();
    const std::vector<UsageWindow> windows = windowsAt(kNow);
    HistoryIndex index(history);
    for (auto _ : state) {
        index.update(history);
        recompute(index, windows, activity);
    }
}

void recomputeAll(benchmark::State& state) {
    recomputeOn(fullHistory(state), state);
}

/// The running session and week have 1,000 samples; all others are of instances that are over.
void recomputeWithMorePast(benchmark::State& state) {
    const Instant weekStart = kNow - kWeekAge;
    std::vector<HistorySample> history = historyBetween(kNow - kRetention, weekStart, state.range(0) - 1000);
    const std::vector<HistorySample> current = historyBetween(weekStart, kNow, 1000);
    history.insert(history.end(), current.begin(), current.end());
    recomputeOn(history, state);
}

void sessionWeekRatio(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(VornEngine::sessionWeekRatio(history, 20));
    }
}

/// Once a process, and after a prune.
void indexFromScratch(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(HistoryIndex(history));
    }
}

/// What was learnt in a year, the last week with the given history.
Rhythm aYear(const std::vector<HistorySample>& history, const ActivitySummary& activity, const ZoneOffsets& zone) {
    const auto past = historyBetween(kNow - 365 * 24h, kNow - kRetention, 100'000);
    Rhythm rhythm = VornEngine::learn({}, {.history = past, .zone = zone, .now = kNow});
    return VornEngine::learn(std::move(rhythm), {.history = history, .activity = &activity, .zone = zone, .now = kNow});
}

/// Four windows, as on a tick without a new reading.
void forecastAll(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    const ActivitySummary activity = someActivity();
    const ZoneOffsets zone({{kNow - 200 * 24h, 2h}, {kNow - 30 * 24h, 1h}});
    Rhythm rhythm = aYear(history, activity, zone);
    const std::vector<UsageWindow> windows = windowsAt(kNow);
    for (auto _ : state) {
        rhythm = VornEngine::learn(std::move(rhythm),
                                   {.history = history, .activity = &activity, .zone = zone, .now = kNow});
        for (const UsageWindow& window : windows) {
            benchmark::DoNotOptimize(VornEngine::forecast(
                window, {.history = history, .activity = &activity, .rhythm = rhythm, .zone = zone, .now = kNow}));
        }
    }
}

/// Once, at the first start with a history.
void learnFromScratch(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    const ActivitySummary activity = someActivity();
    const ZoneOffsets zone;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            VornEngine::learn({}, {.history = history, .activity = &activity, .zone = zone, .now = kNow}));
    }
}

/// To compare with: one pass for each window over the whole history, only looking which samples are its own.
void plainPasses(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    const std::vector<UsageWindow> windows = windowsAt(kNow);
    for (auto _ : state) {
        for (const UsageWindow& window : windows) {
            benchmark::DoNotOptimize(
                std::ranges::count_if(history, [&](const HistorySample& sample) { return sample.sameWindow(window); }));
        }
    }
}

/// To compare with: copying the history and sorting it by time.
void copyAndSort(benchmark::State& state) {
    const std::vector<HistorySample> history = fullHistory(state);
    for (auto _ : state) {
        std::vector<HistorySample> sorted = history;
        std::ranges::sort(sorted, {}, &HistorySample::observedAt);
        benchmark::DoNotOptimize(sorted);
    }
}

void sizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(1'000)->Arg(10'000)->Arg(50'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(recomputeAll)->Apply(sizes);
BENCHMARK(recomputeWithMorePast)->Apply(sizes);
BENCHMARK(sessionWeekRatio)->Apply(sizes);
BENCHMARK(indexFromScratch)->Apply(sizes);
BENCHMARK(forecastAll)->Apply(sizes);
BENCHMARK(learnFromScratch)->Apply(sizes);
BENCHMARK(plainPasses)->Apply(sizes);
BENCHMARK(copyAndSort)->Apply(sizes);

}  // namespace
}  // namespace vorn
