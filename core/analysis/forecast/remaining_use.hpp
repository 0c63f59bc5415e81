#pragma once

#include "core/analysis/forecast/forecast_clues.hpp"
#include "core/analysis/forecast/forecast_prior.hpp"

namespace vorn::VornEngine {

/// How much of a limit is still to come, as a distribution. The logarithm of the percent to come is logistic with a
/// longer tail on one side, so that every answer is a formula.
struct RemainingUse {
    double location = 0;   ///< Of the logarithm of the percent to come plus `softening`.
    double steepness = 1;  ///< Positive; the larger, the more certain.
    double asymmetry = 1;  ///< Positive; below 1 little is more likely than the rest suggests.
    double softening = 1;  ///< Percent.

    /// Probability, 0..1, that at least `percent` is still to come.
    [[nodiscard]] double exceeds(double percent) const;
    /// The percent to come that stays below with probability `share`, more than 0 and less than 1; not below 0.
    [[nodiscard]] double quantile(double share) const;
};

/// The fitted model's answer for these clues. Every number of it is finite.
RemainingUse remainingUse(const Clues& clues, const prior::Model& model, double softening);

}  // namespace vorn::VornEngine
