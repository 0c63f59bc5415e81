#include "core/analysis/forecast/usual_week.hpp"

#include <algorithm>
#include <cmath>

#include "core/analysis/forecast/forecast_prior.hpp"

namespace vorn::VornEngine {
namespace {

constexpr std::size_t kDayHours = 24;
constexpr double kPriorHours = 60;  // what people do on average counts like so many hours of one's own
constexpr double kWorkday = 1;      // points from which a day counts as worked
constexpr std::int64_t kRecentDays = 28;
constexpr std::int64_t kKnownDays = 56;

bool isWeekend(std::size_t day) {
    return day >= 5;
}

struct Sums {
    double points = 0;
    double busy = 0;
    double seen = 0;
};

/// An hour's own sums with those of the hours beside it.
Sums around(const std::array<Sums, Rhythm::kHours>& hours, std::size_t hour) {
    constexpr std::array<double, 5> kShares = {0.4, 0.8, 1.0, 0.8, 0.4};
    Sums sums;
    for (std::size_t i = 0; i < kShares.size(); ++i) {
        const Sums& other = hours[(hour + Rhythm::kHours + i - 2) % Rhythm::kHours];
        sums.points += kShares[i] * other.points;
        sums.busy += kShares[i] * other.busy;
        sums.seen += kShares[i] * other.seen;
    }
    return sums;
}

void fillHours(UsualWeek& usual, const Rhythm& rhythm) {
    std::array<Sums, Rhythm::kHours> own{};
    Sums all;
    for (std::size_t hour = 0; hour < Rhythm::kHours; ++hour) {
        const auto& slot = rhythm.hours[hour];
        own[hour] = {slot.points + usual.pointsPerWeight * slot.weight, slot.active, slot.seen};
        all.points += own[hour].points;
        all.busy += own[hour].busy;
        all.seen += own[hour].seen;
    }
    const double mean = (all.points + prior::kPointsPerHour * kPriorHours) / (all.seen + kPriorHours);
    const double meanBusy = (all.busy + prior::kBusyShare * kPriorHours) / (all.seen + kPriorHours);

    // Each hour shares with those beside it, with the same hour of like days, and with what people do.
    std::array<Sums, Rhythm::kHours> smooth{};
    for (std::size_t hour = 0; hour < Rhythm::kHours; ++hour) {
        smooth[hour] = around(own, hour);
    }
    for (std::size_t hour = 0; hour < Rhythm::kHours; ++hour) {
        const std::size_t day = hour / kDayHours;
        const std::size_t clock = hour % kDayHours;
        Sums like;
        for (std::size_t other = isWeekend(day) ? 5 : 0; other < (isWeekend(day) ? 7U : 5U); ++other) {
            const Sums& slot = smooth[other * kDayHours + clock];
            like.points += slot.points;
            like.busy += slot.busy;
            like.seen += slot.seen;
        }
        const double shape = prior::kShape[(isWeekend(day) ? kDayHours : 0) + clock];
        const double likePoints = (like.points + 6 * mean * shape) / (like.seen + 6);
        const double likeBusy = (like.busy + 6 * std::min(1.0, meanBusy * shape)) / (like.seen + 6);
        usual.pointsPerHour[hour] = (smooth[hour].points + 5 * likePoints) / (smooth[hour].seen + 5);
        usual.busyShare[hour] = std::min(1.0, (smooth[hour].busy + 5 * likeBusy) / (smooth[hour].seen + 5));
        usual.pointsPerWeek += usual.pointsPerHour[hour];
    }
}

void fillDays(UsualWeek& usual, const Rhythm& rhythm, std::int64_t today) {
    std::array<double, 7> worked{};
    std::array<double, 7> total{};
    double cost = 2 * prior::kPointsPerWorkday;
    double costs = 2;
    double active = 2;
    double recent = 4;
    Sums logs{2 * std::log(prior::kPointsPerWorkday), 0, 2};
    double squares = 2 * (std::pow(std::log(prior::kPointsPerWorkday), 2) + 0.5);
    for (const auto& day : rhythm.days) {
        const std::int64_t age = today - day.number;
        if (age < 1 || age > kKnownDays || day.seenHours < 12) {
            continue;
        }
        const double points = day.points + usual.pointsPerWeight * day.weight;
        const double share = std::exp2(-static_cast<double>(age) / 28);
        const auto weekday = static_cast<std::size_t>(hourOfWeek(day.number * 24) / 24);
        const bool isWorked = points > kWorkday;
        total[weekday] += share;
        worked[weekday] += isWorked ? share : 0;
        if (isWorked) {
            cost += share * points;
            costs += share;
            const double log = std::log(points);
            logs.points += share * log;
            logs.seen += share;
            squares += share * log * log;
        }
        if (age <= kRecentDays) {
            active += isWorked ? 1 : 0;
            recent += 1;
        }
    }
    usual.pointsPerWorkday = cost / costs;
    const double meanLog = logs.points / logs.seen;
    usual.workdaySpread = std::sqrt(std::max(0.01, squares / logs.seen - meanLog * meanLog));
    usual.activeShare = active / recent;
    for (std::size_t day = 0; day < worked.size(); ++day) {
        double likeWorked = 2 * (isWeekend(day) ? prior::kWeekendWork : prior::kWeekdayWork);
        double likeTotal = 2;
        for (std::size_t other = isWeekend(day) ? 5 : 0; other < (isWeekend(day) ? 7U : 5U); ++other) {
            likeWorked += worked[other];
            likeTotal += total[other];
        }
        usual.worksShare[day] = (worked[day] + 1.5 * likeWorked / likeTotal) / (total[day] + 1.5);
    }
}

/// What a token costs; while readings have told little about it, such that the time before them cost what people use.
void fillPrice(UsualWeek& usual, const Rhythm& rhythm) {
    constexpr double kPriorPoints = 3;
    double points = rhythm.weekPointsWatched;
    double weight = rhythm.weightWatched;
    if (rhythm.weightBefore > 0 && rhythm.hoursBefore > 0) {
        points += kPriorPoints;
        weight += kPriorPoints * rhythm.weightBefore / (prior::kPointsPerHour * rhythm.hoursBefore);
    }
    usual.pointsPerWeight = weight > 0 ? points / weight : 0;
}

}  // namespace

UsualWeek UsualWeek::of(const Rhythm& rhythm, const ZoneOffsets& zone, Instant now) {
    UsualWeek usual;
    fillPrice(usual, rhythm);
    const double seen = rhythm.firstReadAt ? (now - *rhythm.firstReadAt) / std::chrono::hours{168} : 0;
    usual.weeksRead = std::clamp(seen, 0.0, 52.0);
    usual.weeksKnown = usual.weeksRead + std::min(rhythm.hoursBefore / 168, 5.0);
    const auto& exchange = rhythm.exchange;
    usual.weekPerSession =
        std::clamp((exchange.weekPoints + prior::kWeekPerSession * 60) / (exchange.sessionPoints + 60), 0.02, 0.5);
    fillHours(usual, rhythm);
    fillDays(usual, rhythm, dayOfHour(zone.hour(now)));
    return usual;
}

double UsualWeek::expected(const ZoneOffsets& zone, Instant from, Instant to) const {
    double points = 0;
    while (from < to) {
        const Instant end = std::min(zone.nextHour(from), to);
        points += pointsPerHour[static_cast<std::size_t>(hourOfWeek(zone.hour(from)))] *
                  ((end - from) / std::chrono::hours{1});
        from = end;
    }
    return points;
}

Instant UsualWeek::reaching(double points, const ZoneOffsets& zone, Instant from, Instant to) const {
    while (from < to) {
        const Instant end = std::min(zone.nextHour(from), to);
        const double rate = pointsPerHour[static_cast<std::size_t>(hourOfWeek(zone.hour(from)))];
        const double more = rate * ((end - from) / std::chrono::hours{1});
        if (more >= points && rate > 0) {
            return std::min(end, from + std::max(0.0, points / rate) * std::chrono::hours{1});
        }
        points -= more;
        from = end;
    }
    return to;
}

double usedOn(const Rhythm& rhythm, const UsualWeek& usual, std::int64_t day) {
    const auto at = std::ranges::lower_bound(rhythm.days, day, {}, &Rhythm::Day::number);
    return at != rhythm.days.end() && at->number == day ? at->points + usual.pointsPerWeight * at->weight : 0;
}

double usedIn(const Rhythm& rhythm, std::int64_t from, std::int64_t to) {
    double points = 0;
    for (auto at = std::ranges::lower_bound(rhythm.recent, from, {}, &Rhythm::RecentHour::number);
         at != rhythm.recent.end() && at->number < to; ++at) {
        points += at->points;
    }
    return points;
}

}  // namespace vorn::VornEngine
