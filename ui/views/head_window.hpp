#pragma once

#include <optional>

#include "ui/format/head.hpp"

namespace vorn {

class UsageModel;

/// What stands over all windows now; empty while there are none.
std::optional<Format::Head> headOf(const UsageModel& model);

/// The assessment that the head speaks of; null while there is none. Valid until the model's next recomputation.
const WindowAssessment* headWindow(const UsageModel& model);

}  // namespace vorn
