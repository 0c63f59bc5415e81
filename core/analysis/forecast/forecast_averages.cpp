// Written by tools/fit-forecast; see docs/forecast.md.
#include "core/analysis/forecast/forecast_prior.hpp"

namespace vorn::VornEngine::prior {

const double kPointsPerHour = 0.342;
const double kBusyShare = 0.0777;
const double kPointsPerWorkday = 21.2;
const double kWeekdayWork = 0.41;
const double kWeekendWork = 0.314;
const double kWeekPerSession = 0.188;

const std::array<double, 48> kShape = {
    0.822, 0.592, 0.433, 0.349, 0.325, 0.409, 0.552, 0.790, 0.944, 1.131, 1.258, 1.363, 1.398, 1.440, 1.495, 1.547,
    1.581, 1.504, 1.425, 1.373, 1.364, 1.334, 1.238, 1.066, 0.728, 0.534, 0.386, 0.274, 0.221, 0.236, 0.326, 0.489,
    0.639, 0.857, 0.971, 1.045, 1.055, 1.075, 1.064, 1.120, 1.101, 1.072, 1.075, 1.094, 1.162, 1.139, 1.030, 0.930};

}  // namespace vorn::VornEngine::prior
