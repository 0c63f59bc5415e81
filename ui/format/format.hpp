#pragma once

#include <string>

#include "core/analysis/window_assessment.hpp"

/// Numbers, moments and verdicts in words. Decimal points are full stops in every locale; only the clock follows the
/// user's. No text ever holds "nan", "inf" or a negative zero: every number passes one function that sees to it, and
/// what is not a number reads "—".
namespace vorn::Format {

std::string percent(double percent);         ///< "43%": whole, half away from zero.
std::string duration(Seconds time);          ///< "<1m" (also when past), "45m", "1h 30m", "2h", "1d 5h", "3d".
std::string multiplier(double factor);       ///< "2.4×", from 10 up "13×".
std::string factor(const VornSteer& steer);  ///< "■", "↓0.6×", "→", "↑1.8×", "↑".
std::string sessionsLeft(double sessions);   ///< "6.5×5h", from 10 up "12×5h"; "∞×5h" without bounds.
std::string times(double ratio);             ///< "×0.50", "×1.8", "×4+"; "idle" without bounds.

/// Points per hour: "35%/h"; below 10 one decimal unless it is 0 ("0.4%/h", "4%/h"); "<0.1%/h" when that would round
/// away; "0%/h" only for no use at all.
std::string rate(double pointsPerHour);
/// The same in the measure of the window: per hour for the session, per day for weeks ("11%/day").
std::string rate(double pointsPerHour, const WindowKind& kind);

/// What a burn rate was formed from: "from local activity", "last 45 min", "last 24 h", "average".
std::string basis(RateBasis basis, const WindowKind& kind);
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
