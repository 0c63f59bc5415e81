#pragma once

#include <QString>

namespace vorn {

class UsageModel;

/// All that the tray can say in words: the headline, then a line for each window, and what is wrong.
QString toolTip(const UsageModel& model);

}  // namespace vorn
