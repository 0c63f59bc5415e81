#include "core/analysis/session_week_ratio.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace vorn {
namespace {

using namespace std::chrono_literals;

/// Percentage points. A smaller rise says nothing, since readings are whole percents.
constexpr double kLeastSessionRise = 1.0;
/// Week readings further apart than this are not interpolated between: anything may have happened meanwhile.
constexpr Seconds kLongestInterpolation = 2h;
/// A lone week reading counts for moments up to this far from it.
constexpr Seconds kNearEnough = 15min;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A reading of one kind, without its key: cheaper to sort and walk than whole samples.
struct Reading {
    Instant time;
    double usedPercent;
    std::optional<Instant> resetsAt;
};

struct WeekValue {
    double usedPercent;
    Reading source;
};

/// The same instance, of which both reset times are known: two readings without one may be of different weeks.
bool isSameKnownInstance(const Reading& one, const Reading& other) {
    return one.resetsAt && other.resetsAt && sameReset(one.resetsAt, other.resetsAt);
}

/// The finite readings of `kind` in order of time.
std::vector<Reading> readingsOf(const WindowKind& kind, std::span<const HistorySample> history) {
    const std::string key = kind.key();
    std::vector<Reading> readings;
    for (const HistorySample& sample : history) {
        if (sample.kindKey == key && std::isfinite(sample.usedPercent) &&
            std::isfinite(secondsSince1970(sample.observedAt))) {
            readings.push_back({sample.observedAt, sample.usedPercent, sample.resetsAt});
        }
    }
    if (!std::ranges::is_sorted(readings, {}, &Reading::time)) {
        std::ranges::stable_sort(readings, {}, &Reading::time);
    }
    return readings;
}

/// Cuts consecutive readings into one list for each window instance; a reading without a reset time stands alone.
std::vector<std::span<const Reading>> instances(std::span<const Reading> readings) {
    std::vector<std::span<const Reading>> groups;
    std::size_t start = 0;
    for (std::size_t i = 1; i <= readings.size(); ++i) {
        if (i == readings.size() || !isSameKnownInstance(readings[i - 1], readings[i])) {
            groups.push_back(readings.subspan(start, i - start));
            start = i;
        }
    }
    return groups;
}

bool canInterpolate(const Reading& before, const Reading& after) {
    return isSameKnownInstance(before, after) && after.time - before.time <= kLongestInterpolation;
}

WeekValue interpolate(const Reading& before, const Reading& after, Instant at) {
    const Seconds gap = after.time - before.time;
    const double share = gap > 0s ? (at - before.time) / gap : 0;
    return {before.usedPercent + share * (after.usedPercent - before.usedPercent), after};
}

/// Of two readings equally near the earlier one.
const Reading* nearest(const Reading* before, const Reading* after, Instant at) {
    if (before == nullptr || after == nullptr) {
        return before != nullptr ? before : after;
    }
    return at - before->time <= after->time - at ? before : after;
}

/// The week percent at a moment and the reading it rests on; empty when no reading is near enough.
std::optional<WeekValue> weekValue(Instant at, std::span<const Reading> weeks) {
    const auto found = std::ranges::lower_bound(weeks, at, {}, &Reading::time);
    const Reading* after = found != weeks.end() ? &*found : nullptr;
    const Reading* before = found != weeks.begin() ? &*(found - 1) : nullptr;
    if (before != nullptr && after != nullptr && canInterpolate(*before, *after)) {
        return interpolate(*before, *after, at);
    }
    const Reading* near = nearest(before, after, at);
    if (near == nullptr || std::chrono::abs(near->time - at) > kNearEnough) {
        return std::nullopt;
    }
    return WeekValue{near->usedPercent, *near};
}

/// The week's rise over the session instance; empty when it cannot be told.
std::optional<double> weekRise(std::span<const Reading> session, std::span<const Reading> weeks) {
    const auto first = weekValue(session.front().time, weeks);
    const auto last = weekValue(session.back().time, weeks);
    if (!first || !last || !isSameKnownInstance(first->source, last->source)) {
        return std::nullopt;
    }
    return std::max(0.0, last->usedPercent - first->usedPercent);
}

}  // namespace

double SessionWeekRatio::weekPercentPerSession() const {
    return weekPointsPerSessionPoint * 100;
}

double SessionWeekRatio::sessionsPerWeek() const {
    return weekPointsPerSessionPoint > 0 ? 1 / weekPointsPerSessionPoint : kInfinity;
}

double SessionWeekRatio::sessionsLeft(double weekUsed) const {
    const double cost = weekPercentPerSession();
    return cost > 0 ? std::max(0.0, 100 - weekUsed) / cost : kInfinity;
}

namespace VornEngine {

std::optional<SessionWeekRatio> sessionWeekRatio(std::span<const HistorySample> history, double minimumSessionPoints) {
    const std::vector<Reading> sessions = readingsOf(WindowKind::session(), history);
    const std::vector<Reading> weeks = readingsOf(WindowKind::week(), history);
    SessionWeekRatio result;
    double weekPoints = 0;
    for (const auto& session : instances(sessions)) {
        const double sessionRise = session.back().usedPercent - session.front().usedPercent;
        if (sessionRise < kLeastSessionRise) {
            continue;
        }
        if (const auto rise = weekRise(session, weeks)) {
            result.sessionPoints += sessionRise;
            weekPoints += *rise;
            ++result.sessions;
        }
    }
    if (minimumSessionPoints > result.sessionPoints) {
        return std::nullopt;
    }
    result.weekPointsPerSessionPoint = weekPoints / result.sessionPoints;
    return result;
}

}  // namespace VornEngine
}  // namespace vorn
