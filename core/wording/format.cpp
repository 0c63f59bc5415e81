#include "core/wording/format.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "core/support/unicode/locale_time.hpp"

namespace vorn::Format {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kNoNumber = "—";

/// From here on a projection counts as using the window up.
constexpr double kUsedUpPercent = 95;
/// A watch verdict never reads as hitting the limit.
constexpr double kHighestWatchPercent = 99;
/// From this many on, multiples are shown whole.
constexpr double kWholeFrom = 10;
/// From this factor on it no longer matters how much room there is.
constexpr double kPlentyFactor = 4;

/// The one way from a number to text: fixed decimals, ties as C's printf breaks them, a full stop in every locale.
std::string number(double value, int decimals) {
    if (!std::isfinite(value)) {
        return std::string(kNoNumber);
    }
    std::string text = fmt::format("{:.{}f}", value, decimals);
    if (text.front() == '-' && text.find_first_of("123456789") == std::string::npos) {
        text.erase(0, 1);
    }
    return text;
}

/// Rounded half away from zero.
std::string whole(double value) {
    return number(std::round(value), 0);
}

/// "45 min", "24 h": where there is room to say the unit.
std::string longDuration(Seconds time) {
    return time < 1h ? whole(time / 1min) + " min" : whole(time / 1h) + " h";
}

/// Nothing has been used of the window's instance and it has no end yet, or it begins only later.
bool hasNotStarted(const UsageWindow& window, Instant now) {
    if (!window.resetsAt) {
        return window.usedPercent <= 0;
    }
    return *window.resetsAt - window.kind.length() > now;
}

bool isIdle(const WindowAssessment& assessment) {
    return assessment.ratePerHour == 0.0;
}

/// How a window that a planned reset cuts short will end; empty when something else matters more.
std::optional<std::string> plannedResetVerdict(const WindowAssessment& assessment, Instant now) {
    const bool isCalm = assessment.status == VornStatus::comfortable || assessment.status == VornStatus::watch;
    if (!assessment.plannedResetAt || !assessment.projectedAtReset || !isCalm) {
        return std::nullopt;
    }
    const std::string when = clock(*assessment.plannedResetAt, now);
    const double projected = *assessment.projectedAtReset;
    if (isIdle(assessment)) {
        return "Idle · " + percent(kLimitPercent - assessment.window.usedPercent) + " unused at the planned reset " +
               when;
    }
    if (projected >= kUsedUpPercent) {
        return "Uses it up by the planned reset " + when;
    }
    return percent(kLimitPercent - projected) + " unused at the planned reset " + when;
}

std::string limitedVerdict(const WindowAssessment& assessment, Instant now) {
    const auto back = assessment.horizon();
    if (!back || *back <= now) {
        return "Limit reached";
    }
    return "Limit reached · back at " + clock(*back, now);
}

std::string atRiskVerdict(const WindowAssessment& assessment) {
    if (!assessment.timeToLimit) {
        return "On track to hit the limit";
    }
    return "Limit in ~" + duration(*assessment.timeToLimit) + " at this pace";
}

std::string watchVerdict(const WindowAssessment& assessment) {
    if (!assessment.projectedAtReset) {
        return "Running warm";
    }
    return "Lands near " + percent(std::min(*assessment.projectedAtReset, kHighestWatchPercent)) + " at reset";
}

std::string comfortableVerdict(const WindowAssessment& assessment, Instant now) {
    if (hasNotStarted(assessment.window, now)) {
        return "Not started";
    }
    if (isIdle(assessment)) {
        return "Idle · nothing burning";
    }
    if (!assessment.projectedAtReset) {
        return "Plenty of room";
    }
    return "Lands around " + percent(*assessment.projectedAtReset) + " at reset";
}

std::string rateText(double points, std::string_view unit) {
    if (!std::isfinite(points)) {
        return std::string(kNoNumber);
    }
    const double tenths = std::round(std::max(0.0, points) * 10) / 10;
    if (points > 0 && tenths == 0) {
        return fmt::format("<0.1{}", unit);
    }
    const bool isWhole = tenths >= kWholeFrom || tenths == std::round(tenths);
    return (isWhole ? whole(std::max(0.0, points)) : number(tenths, 1)).append(unit);
}

}  // namespace

std::string percent(double percent) {
    return whole(percent) + "%";
}

std::string duration(Seconds time) {
    constexpr std::int64_t kHour = 60;  // in minutes, as all below
    constexpr std::int64_t kDay = 24 * kHour;
    constexpr double kLongest = 1e15;  // keeps the whole number in range; about two billion years

    if (!std::isfinite(time.count())) {
        return std::string(kNoNumber);
    }
    const std::int64_t minutes = std::llround(std::clamp(time / 1min, 0.0, kLongest));
    if (minutes < 1) {
        return "<1m";
    }
    const std::int64_t days = minutes / kDay;
    const std::int64_t hours = minutes % kDay / kHour;
    if (days > 0) {
        return hours > 0 ? fmt::format("{}d {}h", days, hours) : fmt::format("{}d", days);
    }
    const std::int64_t rest = minutes % kHour;
    if (hours == 0) {
        return fmt::format("{}m", rest);
    }
    return rest > 0 ? fmt::format("{}h {}m", hours, rest) : fmt::format("{}h", hours);
}

std::string spokenDuration(Seconds time) {
    constexpr std::int64_t kHour = 60;  // in minutes, as all below
    constexpr std::int64_t kDay = 24 * kHour;
    constexpr double kLongest = 1e9;
    const std::int64_t minutes = std::isfinite(time.count()) ? std::llround(std::clamp(time / 1min, 0.0, kLongest)) : 0;
    if (minutes < 1) {
        return "less than a minute";
    }
    std::string text;
    const auto add = [&text](std::int64_t number, const char* unit) {
        if (number > 0) {
            text += (text.empty() ? "" : " ") + count(number, unit);
        }
    };
    add(minutes / kDay, "day");
    add(minutes % kDay / kHour, "hour");
    add(minutes < kDay ? minutes % kHour : 0, "minute");
    return text;
}

std::string multiplier(double factor) {
    return (factor >= kWholeFrom ? whole(factor) : number(factor, 1)) + "×";
}

std::string factor(const VornSteer& steer) {
    const double factor = steer.factor;
    if (factor <= 0) {
        return "■";
    }
    if (factor < VornSteer::easeOffFactor) {
        return "↓" + multiplier(factor);
    }
    if (factor < VornSteer::speedUpFactor) {
        return "→";
    }
    return factor < kPlentyFactor ? "↑" + multiplier(factor) : "↑";
}

std::string shortFactor(const VornSteer& steer) {
    const bool vanishes =
        steer.direction() == VornSteer::Direction::easeOff && multiplier(steer.factor) == multiplier(0);
    return vanishes ? "↓" : factor(steer);
}

std::string sessions(double sessions) {
    return std::isfinite(sessions) ? number(sessions, sessions >= kWholeFrom ? 0 : 1) : "∞";
}

std::string sessionsLeft(double left) {
    return sessions(left) + "×5h";
}

std::string tokens(double weight) {
    if (!std::isfinite(weight)) {
        return std::string(kNoNumber);
    }
    constexpr double kStep = 1000;
    constexpr double kLastWhole = kStep - 0.5;  // from here on it would read as a thousand
    constexpr std::array kUnits{"", "k", "M", "G"};
    std::size_t unit = 0;
    double amount = std::max(0.0, weight);
    for (; amount >= kLastWhole && unit + 1 < kUnits.size(); ++unit) {
        amount /= kStep;
    }
    const double tenths = std::round(amount * 10) / 10;
    return (unit > 0 && tenths < kWholeFrom ? number(tenths, 1) : whole(amount)) + kUnits.at(unit);
}

std::string count(std::int64_t number, std::string_view noun, std::string_view plural) {
    if (number == 1) {
        return fmt::format("1 {}", noun);
    }
    return plural.empty() ? fmt::format("{} {}s", number, noun) : fmt::format("{} {}", number, plural);
}

std::string times(double ratio) {
    if (!std::isfinite(ratio)) {
        return "idle";
    }
    if (ratio >= kPlentyFactor) {
        return "×4+";
    }
    return "×" + number(ratio, ratio < 1 ? 2 : 1);
}

std::string rate(double pointsPerHour) {
    return rateText(pointsPerHour, "%/h");
}

std::string rate(double pointsPerHour, const WindowKind& kind) {
    constexpr double kHoursPerDay = 24;
    return kind.isSession() ? rate(pointsPerHour) : rateText(pointsPerHour * kHoursPerDay, "%/day");
}

std::string basis(RateBasis basis, const WindowKind& kind) {
    switch (basis) {
        case RateBasis::localActivity:
            return "from local activity";
        case RateBasis::recent:
            return "last " + longDuration(VornEngine::recentLookBack(kind));
        case RateBasis::windowAverage:
            return "average";
        case RateBasis::none:
            break;
    }
    return "no rate yet";
}

std::string room(double ratePerHour, double sustainableRatePerHour) {
    if (!(sustainableRatePerHour > 0)) {
        return {};
    }
    const bool isIdle = ratePerHour <= kNegligibleRatePerHour;
    const std::string text =
        times(isIdle ? std::numeric_limits<double>::infinity() : sustainableRatePerHour / ratePerHour);
    return text == times(0) ? "" : text;
}

std::string pace(double paceDelta) {
    const std::string points = whole(std::abs(paceDelta));
    if (points == "0" || points == kNoNumber) {
        return "on even pace";
    }
    return points + (points == "1" ? " point " : " points ") + (paceDelta > 0 ? "ahead of" : "behind") + " even pace";
}

std::string clock(Instant instant, Instant now) {
    if (!std::isfinite(secondsSince1970(instant))) {
        return std::string(kNoNumber);
    }
    const TimeZone zone = currentTimeZone();
    const std::string time = shortTime(instant, zone);
    return isSameDay(instant, now, zone) ? time : shortWeekday(instant, zone) + " " + time;
}

std::string weekday(Instant instant) {
    return std::isfinite(secondsSince1970(instant)) ? shortWeekday(instant, currentTimeZone()) : std::string(kNoNumber);
}

std::string verdict(const WindowAssessment& assessment, Instant now) {
    if (auto planned = plannedResetVerdict(assessment, now)) {
        return *std::move(planned);
    }
    switch (assessment.status) {
        case VornStatus::limited:
            return limitedVerdict(assessment, now);
        case VornStatus::atRisk:
            return atRiskVerdict(assessment);
        case VornStatus::watch:
            return watchVerdict(assessment);
        case VornStatus::comfortable:
            break;
    }
    return comfortableVerdict(assessment, now);
}

std::string steerHeadline(const VornSteer& steer) {
    const double factor = steer.factor;
    if (factor <= 0) {
        return "Limit reached — pause until it resets";
    }
    if (factor < VornSteer::easeOffFactor) {
        return "Ease off to " + percent(factor * 100) + " of your current pace";
    }
    if (factor < VornSteer::speedUpFactor) {
        return "Right on pace — keep going";
    }
    if (!std::isfinite(factor)) {
        return "Idle — plenty of room";
    }
    if (factor >= kPlentyFactor) {
        return "Plenty of room to speed up";
    }
    return "Room to speed up " + multiplier(factor);
}

std::string steerReason(const VornSteer& steer) {
    const char* const end = " is the tight one";
    switch (steer.kind.which()) {
        case WindowKind::Case::session:
            return std::string("Session (5h)") + end;
        case WindowKind::Case::week:
            return std::string("Week (7d)") + end;
        case WindowKind::Case::weekModel:
            break;
    }
    return "Week · " + steer.kind.modelName() + end;
}

}  // namespace vorn::Format
