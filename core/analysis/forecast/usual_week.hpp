#pragma once

#include <array>
#include <cstdint>

#include "core/data/rhythm.hpp"
#include "core/support/zone_offsets.hpp"

namespace vorn::VornEngine {

/// What somebody usually uses when, read from what was learnt. The less is known, the more of it is what people do on
/// average. Points are those of the week limit.
struct UsualWeek {
    std::array<double, Rhythm::kHours> pointsPerHour{};  ///< By hour of the local week.
    std::array<double, Rhythm::kHours> busyShare{};      ///< 0..1: how often something is used in that hour.
    std::array<double, 7> worksShare{};                  ///< 0..1: how often there is work on that day, from Monday.
    double pointsPerWeek = 0;
    double pointsPerWorkday = 0;  ///< On a day with work.
    double workdaySpread = 0;     ///< Standard deviation of the logarithm of that.
    double activeShare = 0;       ///< 0..1: of the last four weeks' days, those with work.
    double weeksRead = 0;         ///< Since the first reading.
    double weeksKnown = 0;        ///< Since the first reading, or the first event before it.
    double pointsPerWeight = 0;   ///< What a cost-weighted token of this machine costs; 0 while unknown.
    double weekPerSession = 0;    ///< Week points that a session point costs.

    /// What `rhythm` tells at `now`; `zone`: of the last nine weeks.
    static UsualWeek of(const Rhythm& rhythm, const ZoneOffsets& zone, Instant now);

    /// Points expected between two moments; 0 when `to` is not after `from`.
    [[nodiscard]] double expected(const ZoneOffsets& zone, Instant from, Instant to) const;
    /// When `points` are expected to be used, counted from `from`; `to` when that is later.
    [[nodiscard]] Instant reaching(double points, const ZoneOffsets& zone, Instant from, Instant to) const;
};

/// Points used in a local day, as far as it is known.
double usedOn(const Rhythm& rhythm, const UsualWeek& usual, std::int64_t day);
/// Points used in the local hours from `from` on and before `to`; of the last nine days.
double usedIn(const Rhythm& rhythm, std::int64_t from, std::int64_t to);

}  // namespace vorn::VornEngine
