#include "core/analysis/forecast/remaining_use.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vorn::VornEngine {
namespace {

double dot(std::span<const double> weights, std::span<const double> clues) {
    double sum = weights[0];
    for (std::size_t i = 0; i < clues.size(); ++i) {
        sum += weights[i + 1] * clues[i];
    }
    return sum;
}

}  // namespace

// The share below is F = σ(z)^asymmetry with z = steepness · (log(percent + softening) − location).
double RemainingUse::exceeds(double percent) const {
    if (percent <= 0) {
        return 1;
    }
    const double z = steepness * (std::log(percent + softening) - location);
    return std::clamp(-std::expm1(-asymmetry * (z > -30 ? std::log1p(std::exp(-z)) : -z)), 0.0, 1.0);
}

double RemainingUse::quantile(double share) const {
    // z from σ(z) = share^(1/asymmetry), which may be very near to 0 or 1.
    const double power = std::log(share) / asymmetry;
    const double z = power - std::log(-std::expm1(power));
    return std::max(0.0, std::exp(std::min(location + z / steepness, 20.0)) - softening);
}

RemainingUse remainingUse(const Clues& clues, const prior::Model& model, double softening) {
    if (clues.values.size() != model.clues) {
        throw std::logic_error("the clues have changed since tools/fit-forecast ran");
    }
    std::array<double, 3> outputs{};
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        outputs[i] = dot(model.linear.subspan(i * (model.clues + 1), model.clues + 1), clues.values);
    }
    for (std::size_t unit = 0; unit < model.units; ++unit) {
        const double value =
            std::tanh(dot(model.hidden.subspan(unit * (model.clues + 1), model.clues + 1), clues.values));
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            outputs[i] += model.output[i * model.units + unit] * value;
        }
    }
    const auto bounded = [](double value, double most) {
        return std::isfinite(value) ? std::clamp(value, -most, most) : 0;
    };
    return {.location = bounded(outputs[0], 10),
            .steepness = std::exp(bounded(outputs[1], 2.5)),
            .asymmetry = std::exp(bounded(outputs[2], 2)),
            .softening = softening};
}

}  // namespace vorn::VornEngine
