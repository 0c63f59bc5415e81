#include <algorithm>
#include <cmath>

#include "core/analysis/forecast/forecast_clues.hpp"
#include "core/analysis/forecast/forecast_prior.hpp"

namespace vorn::VornEngine {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t kDay = 24;
constexpr std::int64_t kWeek = 168;

/// Points of the model's limit for each point of the week limit.
double scaleOf(const WindowKind& kind, const Rhythm& rhythm) {
    if (kind.which() != WindowKind::Case::weekModel) {
        return 1;
    }
    constexpr double kPriorPoints = 20;
    constexpr double kPriorScale = 0.6;
    const auto model = rhythm.models.find(kind.key());
    if (model == rhythm.models.end()) {
        return kPriorScale;
    }
    return std::clamp((model->second.points + kPriorPoints * kPriorScale) / (model->second.weekPoints + kPriorPoints),
                      0.02, 20.0);
}

/// The share of each local day between two moments, by what is usual then.
std::vector<double> sharesOfDays(const Situation& s, Instant from, Instant to) {
    std::vector<double> shares;
    const std::int64_t last = dayOfHour(s.zone.hour(to - 1s));
    for (std::int64_t day = dayOfHour(s.zone.hour(from)); day <= last; ++day) {
        double whole = 0;
        for (std::int64_t hour = 0; hour < kDay; ++hour) {
            whole += s.usual.pointsPerHour[static_cast<std::size_t>(hourOfWeek(day * kDay + hour))];
        }
        Instant end = from;
        while (end < to && dayOfHour(s.zone.hour(end)) == day) {
            end = s.zone.nextHour(end);
        }
        end = std::min(end, to);
        shares.push_back(whole > 0 ? std::min(1.0, s.usual.expected(s.zone, from, end) / whole) : 0);
        from = end;
    }
    return shares;
}

/// What was used in the same stretch of earlier weeks: their mean, the later ones counting more, with `expected` as one
/// more week.
double usedInEarlierWeeks(const Situation& s, Instant from, Instant reset, double expected) {
    const std::int64_t first = dayOfHour(s.zone.hour(from));
    const auto knownFrom = s.rhythm.firstKnownAt ? dayOfHour(s.zone.hour(*s.rhythm.firstKnownAt)) : first;
    const std::vector<double> shares = sharesOfDays(s, from, reset);
    double sum = expected;
    double weights = 1;
    double weight = 1;
    for (std::int64_t week = 1; week <= 7 && first - 7 * week >= knownFrom; ++week) {
        for (std::size_t day = 0; day < shares.size(); ++day) {
            sum += weight * shares[day] * usedOn(s.rhythm, s.usual, first + static_cast<std::int64_t>(day) - 7 * week);
        }
        weights += weight;
        weight *= 0.8;
    }
    return sum / weights;
}

/// Days with work that are still to come, today's rest included.
double workdaysLeft(const Situation& s, std::int64_t hour, std::int64_t end, bool hasWorkedToday) {
    const auto clock = static_cast<double>(hour % kDay);
    const std::int64_t today = dayOfHour(hour);
    const double restOfDay = clock > 8 ? std::max(0.0, (22 - clock) / 14) : 1;
    const auto works = [&](std::int64_t day) {
        return s.usual.worksShare[static_cast<std::size_t>(hourOfWeek(day * kDay) / kDay)];
    };
    double left = hasWorkedToday ? restOfDay : restOfDay * works(today);
    for (std::int64_t day = today + 1; day * kDay < end; ++day) {
        left += works(day) * std::min(1.0, static_cast<double>(end - day * kDay) / kDay);
    }
    return left;
}

double localSince(const Situation& s) {
    return s.activity != nullptr ? s.activity->weight(s.window.observedAt, s.now) * s.usual.pointsPerWeight : 0;
}

/// Points of the week limit on this local day.
struct Today {
    double used = 0;
    double expected = 0;  ///< From now to midnight, or to the reset.
};

Today today(const Situation& s, Instant reset) {
    const std::int64_t hour = s.zone.hour(s.now);
    const std::int64_t day = dayOfHour(hour);
    Instant midnight = s.now;
    while (midnight < reset && dayOfHour(s.zone.hour(midnight)) == day) {
        midnight = s.zone.nextHour(midnight);
    }
    return {.used = usedIn(s.rhythm, day * kDay, hour + 1),
            .expected = s.usual.expected(s.zone, s.now, std::min(midnight, reset))};
}

/// Hours since anything was used, up to five days.
double quietHours(const Situation& s) {
    const auto& recent = s.rhythm.recent;
    const auto since = recent.empty() ? 120 : static_cast<double>(s.zone.hour(s.now) - recent.back().number);
    return std::clamp(since, 0.0, 120.0);
}

/// How much more than usual, as a logarithm, was used in the last `days`.
double level(const Situation& s, std::int64_t days, double softening) {
    const std::int64_t hour = s.zone.hour(s.now);
    const double usual = s.usual.expected(s.zone, s.now - 24h * static_cast<double>(days), s.now);
    return std::log((usedIn(s.rhythm, hour - days * kDay, hour + 1) + softening) / (usual + softening));
}

/// The clues proper. `used` and everything here is in points of the week limit.
std::vector<double> clueValues(const Situation& s, Instant from, double used) {
    constexpr double kSoft = prior::kWeekSoftening;
    const UsualWeek& usual = s.usual;
    const Instant reset = *s.window.resetsAt;
    const Instant start = reset - 168h;
    const std::int64_t hour = s.zone.hour(s.now);
    const double left = std::max(0.0, (reset - s.now) / 1h);
    const double elapsed = std::max(0.0, (s.now - start) / 1h);
    const double expected = usual.expected(s.zone, from, reset);
    const double soFar = usual.expected(s.zone, start, s.now);
    const Today day = today(s, reset);
    const double workdays = workdaysLeft(s, hour, s.zone.hour(reset), day.used >= 1);
    return {
        std::log(expected + kSoft),
        std::log(usedInEarlierWeeks(s, from, reset, expected) + kSoft),
        std::log(workdays * usual.pointsPerWorkday + kSoft),
        std::log(used * left / std::max(elapsed, 6.0) + kSoft),
        std::log(workdays + 0.3),
        std::log(day.expected + 1),
        std::log(left + 3),
        left / kWeek,
        std::log((used + 20) / (soFar + 20)),
        level(s, 3, 8),
        level(s, 1, 5),
        std::log((day.used + 3) / (day.used + day.expected + 3)),
        std::log(day.used + 2),
        std::log(usedIn(s.rhythm, hour - kWeek, hour + 1) + 10),
        std::log(quietHours(s) + 2),
        used / 100,
        std::log(usual.pointsPerWeek + 10),
        std::log(usual.pointsPerWorkday),
        usual.activeShare,
        usual.workdaySpread,
        (s.rhythm.fullWeeks + 0.3) / (s.rhythm.weeks + 1.3),
        1 / (1 + usual.weeksKnown),
        1 / (1 + usual.weeksRead),
    };
}

}  // namespace

Clues weekClues(const Situation& s) {
    Clues clues;
    clues.scale = scaleOf(s.window.kind, s.rhythm);
    const double reading = std::max(0.0, s.window.usedPercent);
    // A model's share of what was done since is not known; all of it is certainly too much.
    const double since = localSince(s) * std::min(1.0, clues.scale);
    clues.used = reading >= 100 ? reading : std::min(reading + since, 99.9);
    clues.from = s.activity != nullptr ? s.now : std::min(s.window.observedAt, s.now);
    clues.values = clueValues(s, clues.from, clues.used / clues.scale);
    return clues;
}

}  // namespace vorn::VornEngine
