#pragma once

#include <vector>

#include "core/data/other_limits.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// The limits as the client tells of them in JSON.
struct ReportedLimits {
    /// In the client's order, those that only its list has at the end; no limit twice; at most 100, as the others.
    std::vector<UsageWindow> windows{};
    OtherLimits others{};
    bool hasList = false;       ///< It has its list of all limits.
    bool hasModelList = false;  ///< And the list of those of single models, which came later.
    bool isUnderstood = true;   ///< False: of a window that it names the used share could not be read.
};

}  // namespace vorn
