#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/analysis/window_assessment.hpp"

/// Numbers, moments and verdicts in words. Decimal points are full stops in every locale; only the clock follows the
/// user's. No text ever holds "nan", "inf" or a negative zero: every number passes one function that sees to it, and
/// what is not a number reads "—".
namespace vorn::Format {

std::string percent(double percent);  ///< "43%": whole, half away from zero.
std::string duration(Seconds time);   ///< "<1m" (also when past), "45m", "1h 30m", "2h", "1d 5h", "3d".
/// "1 hour 15 minutes", "less than a minute": for a screen reader, which makes nothing of "1h 15m".
std::string spokenDuration(Seconds time);
std::string multiplier(double factor);       ///< "2.4×", from 10 up "13×".
std::string factor(const VornSteer& steer);  ///< "■", "↓0.6×", "→", "↑1.8×", "↑".
/// As `factor`, but "↓" alone where the number would read "0.0×": beside "Ease off to 1%" that would be untrue.
std::string shortFactor(const VornSteer& steer);
std::string sessions(double sessions);      ///< How many 5-hour sessions: "6.5", from 10 up "12"; "∞" without bounds.
std::string sessionsLeft(double sessions);  ///< "6.5×5h", from 10 up "12×5h"; "∞×5h" without bounds.
std::string times(double ratio);            ///< "×0.50", "×1.8", "×4+"; "idle" without bounds.

/// Cost-weighted tokens: "560", "1.5k", "34k", "1.3M", "2.5G"; below 10 of a unit with one decimal, half away from
/// zero.
std::string tokens(double weight);
/// "1 reply", "3 replies": `plural` only where adding an "s" will not do.
std::string count(std::int64_t number, std::string_view noun, std::string_view plural = {});

/// Points per hour: "35%/h"; below 10 one decimal unless it is 0 ("0.4%/h", "4%/h"); "<0.1%/h" when that would round
/// away; "0%/h" only for no use at all.
std::string rate(double pointsPerHour);
/// The same in the measure of the window: per hour for the session, per day for weeks ("11%/day").
std::string rate(double pointsPerHour, const WindowKind& kind);

/// What a burn rate was formed from: "from local activity", "last 45 min", "last 24 h", "average".
std::string basis(RateBasis basis, const WindowKind& kind);
/// What a pace leaves room for, on the scale of the steering arrow: `times` of sustainable over current rate. "idle"
/// for a pace that is next to nothing; empty at the limit, where nothing can be sustained, and where it would read
/// "×0.00".
std::string room(double ratePerHour, double sustainableRatePerHour);
/// How far from even use: "12 points ahead of even pace", "1 point behind even pace", "on even pace".
std::string pace(double paceDelta);

/// The time of day in the user's locale and time zone, with the weekday in front when it is not the day of `now`.
std::string clock(Instant instant, Instant now);

/// The abbreviated weekday in the user's locale and time zone: "Thu", "Do".
std::string weekday(Instant instant);

/// How one window stands, in a line: "Lands near 92% at reset".
std::string verdict(const WindowAssessment& assessment, Instant now);

std::string steerHeadline(const VornSteer& steer);  ///< "Room to speed up 1.8×"
std::string steerReason(const VornSteer& steer);    ///< "Session (5h) is the tight one"

}  // namespace vorn::Format
