#include "demo/working_week.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace vorn::demo {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kDay = 24h;
constexpr int kDays = 8;
constexpr Seconds kStep = 5min;
constexpr auto kStepCount = static_cast<std::size_t>(kDays * kDay / kStep);
/// What a step of average work weighs: about a hundred thousand input tokens.
constexpr double kStepWeight = 1.1e5;

/// A small generator (SplitMix64): the standard's distributions differ between libraries.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : m_state(seed) {}
    /// Evenly from 0 to below 1.
    double share() {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t bits = m_state;
        bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
        bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
        bits ^= bits >> 31U;
        return static_cast<double>(bits >> 11U) * 0x1p-53;
    }

private:
    std::uint64_t m_state;
};

/// `ago`: how long before now. The working day began six and a half hours ago and will last another hour and a half;
/// there was a pause for lunch, and two days off.
bool isAtWork(Seconds ago, Seconds sessionAge) {
    const double day = std::floor(ago / kDay);
    const Seconds ofDay = ago - day * kDay;
    if (day == 2 || day == 3) {
        return false;
    }
    if (day == 0 && ofDay <= sessionAge) {
        return true;
    }
    const bool isLunch = ofDay > 3h + 12min && ofDay < 4h;
    return (ofDay < 6h + 30min && !isLunch) || ofDay > 22h + 30min;
}

struct Named {
    const char* name;
    double share;
};

constexpr std::array<Named, 5> kProjects = {{{"/home/ana/src/tide-tables", 0.38},
                                             {"/home/ana/src/ledger-api", 0.27},
                                             {"/home/ana/src/pixel-garden", 0.19},
                                             {"/home/ana/src/map-tiles", 0.11},
                                             {"/home/ana/notes", 0.05}}};
constexpr std::array<Named, 3> kModels = {
    {{"claude-opus-5-5", 0.62}, {"claude-sonnet-5-2", 0.29}, {"claude-haiku-4-5", 0.09}}};

template <std::size_t count>
const char* pick(const std::array<Named, count>& choices, double share) {
    for (const Named& choice : choices) {
        if (share < choice.share) {
            return choice.name;
        }
        share -= choice.share;
    }
    return choices.back().name;
}

/// Token counts of that weight, in the proportions of a long conversation.
TokenCounts tokensWeighing(double weight, std::string_view model) {
    const double base = weight / familyMultiplier(model);
    const auto tokens = [](double count) {
        return static_cast<std::int64_t>(std::llround(count));
    };
    return {.input = tokens(base * 0.04),
            .output = tokens(base * 0.46 / 5),
            .cacheRead = tokens(base * 0.32 / 0.1),
            .cacheWrite5m = tokens(base * 0.18 / 1.25)};
}

}  // namespace

WorkingWeek::WorkingWeek(Instant now, Seconds sessionAge) : m_start(now - kDays * kDay), m_steps(kStepCount) {
    Chance chance(2026);
    for (std::size_t i = 0; i < kStepCount; ++i) {
        const Seconds ago = static_cast<double>(kStepCount - i) * kStep - kStep / 2;
        const double intensity = 0.4 + 1.2 * chance.share();
        m_steps[i] = isAtWork(ago, sessionAge) ? intensity * kStepWeight : 0;
    }
    constexpr std::ptrdiff_t kAverageSteps = 6;  // half an hour: more than any rate of the moment looks back
    std::fill(m_steps.end() - kAverageSteps, m_steps.end(), kStepWeight);
    m_upTo.push_back(0);
    for (const double step : m_steps) {
        m_upTo.push_back(m_upTo.back() + step);
    }
}

double WorkingWeek::upTo(Instant moment) const {
    const double steps = std::clamp((moment - m_start) / kStep, 0.0, static_cast<double>(kStepCount));
    const auto whole = std::min(static_cast<std::size_t>(steps), kStepCount - 1);
    return m_upTo[whole] + (steps - static_cast<double>(whole)) * m_steps[whole];
}

double WorkingWeek::between(Instant since, Instant until) const {
    return std::max(0.0, upTo(until) - upTo(since));
}

double WorkingWeek::mostWithin(Seconds length) const {
    double most = 0;
    for (std::size_t i = 0; i < kStepCount; ++i) {
        const Instant since = m_start + static_cast<double>(i) * kStep;
        most = std::max(most, between(since, since + length));
    }
    return most;
}

std::vector<ActivityEvent> WorkingWeek::replies(Instant since) const {
    constexpr int kRepliesPerStep = 4;
    Chance chance(1126);
    std::vector<ActivityEvent> events;
    std::string project = kProjects.front().name;
    for (std::size_t i = 0; i < kStepCount; ++i) {
        if (chance.share() < 0.08) {  // people stay with a project for about an hour
            project = pick(kProjects, chance.share());
        }
        for (int reply = 0; reply < kRepliesPerStep && m_steps[i] > 0; ++reply) {
            const Instant moment = m_start + (static_cast<double>(i) + (reply + 0.5) / kRepliesPerStep) * kStep;
            const std::string model = pick(kModels, chance.share());
            if (moment >= since) {
                events.push_back({.timestamp = moment,
                                  .model = model,
                                  .cwd = project,
                                  .tokens = tokensWeighing(m_steps[i] / kRepliesPerStep, model)});
            }
        }
    }
    return events;
}

}  // namespace vorn::demo
