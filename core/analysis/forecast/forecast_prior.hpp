#pragma once

#include <array>
#include <span>

/// What people do, as far as nothing is known of the one in question: constants fitted to traces by tools/fit-forecast.
namespace vorn::VornEngine::prior {

/// Added to what is still to come before its logarithm is taken, in percent of the limit: readings are no finer.
inline constexpr double kWeekSoftening = 4;
inline constexpr double kSessionSoftening = 3;

extern const double kPointsPerHour;     ///< Of the week limit, over all hours.
extern const double kBusyShare;         ///< 0..1: of all hours, those in which something is used.
extern const double kPointsPerWorkday;  ///< Of the week limit, on a day with work.
extern const double kWeekdayWork;       ///< 0..1: of these days, those with work.
extern const double kWeekendWork;
extern const double kWeekPerSession;  ///< Week points that a session point costs.

/// Use in each local hour beside the mean: 24 of a weekday, 24 of Saturday or Sunday.
extern const std::array<double, 48> kShape;

/// Constants of one kind of window. With n clues x and h hidden units, each output (location, logarithm of the
/// steepness, logarithm of the asymmetry) is `linear[0] + Σ linear[i+1]·x[i] + Σ output[j]·tanh(hidden[j]·(1, x))`.
struct Model {
    std::size_t clues = 0;
    std::size_t units = 0;
    std::span<const double> linear;  ///< 3 × (1 + clues)
    std::span<const double> hidden;  ///< units × (1 + clues)
    std::span<const double> output;  ///< 3 × units
};
extern const Model kWeekModel;
extern const Model kSessionModel;

}  // namespace vorn::VornEngine::prior
