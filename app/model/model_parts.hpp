#pragma once

#include "app/model/usage_model.hpp"

namespace vorn {

/// The real clock, sources and stores of this user, at the places that `VornPaths` names now.
UsageModel::Parts makeModelParts();

}  // namespace vorn
