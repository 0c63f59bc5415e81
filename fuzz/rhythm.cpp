#include "core/data/rhythm.hpp"

#include <cmath>

#include "core/analysis/forecast/forecast.hpp"
#include "core/analysis/forecast/learn_rhythm.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// What was learnt of somebody's habits, and a program that goes on learning from there.
namespace vorn::fuzz {
namespace {

void requireSoundForecast(const UsageWindow& window, const VornEngine::ForecastInput& input) {
    const auto forecast = VornEngine::forecast(window, input);
    require(forecast && forecast->pHit >= 0 && forecast->pHit <= 1, "a chance is one");
    require(window.usedPercent <= forecast->p10 && forecast->p10 <= forecast->p50 && forecast->p50 <= forecast->p90 &&
                std::isfinite(forecast->p90),
            "percentiles ascend from what is used");
}

}  // namespace

void checkInput(std::string_view input) {
    const Rhythm rhythm = decodeRhythm(input);
    require(rhythm.days.size() <= Rhythm::kMostDays && rhythm.recent.size() <= Rhythm::kMostRecent &&
                rhythm.models.size() <= Rhythm::kMostModels,
            "a rhythm is bounded");
    const Rhythm stored = decodeRhythm(encodeRhythm(rhythm));
    require(decodeRhythm(encodeRhythm(stored)) == stored, "a rhythm is the same after a way through its file");

    const std::vector<HistorySample> history = {
        {"week", 40, kNow + Seconds{86400}, kNow - Seconds{7200}},
        {"session", 20, kNow + Seconds{3600}, kNow - Seconds{600}},
        {"week", 42, kNow + Seconds{86400}, kNow - Seconds{600}},
    };
    const ZoneOffsets zone;
    const Rhythm learnt = VornEngine::learn(rhythm, {.history = history, .zone = zone, .now = kNow});
    for (const HistorySample& sample : history) {
        const UsageWindow window{.kind = sample.kind().value(),
                                 .usedPercent = sample.usedPercent,
                                 .resetsAt = sample.resetsAt,
                                 .observedAt = sample.observedAt};
        requireSoundForecast(window, {.history = history, .rhythm = learnt, .zone = zone, .now = kNow});
    }
}

}  // namespace vorn::fuzz
