#pragma once

#include <QString>
#include <string>

namespace vorn {

/// Keeps numbers with signs and units, and times of day, in order inside right-to-left layouts.
QString leftToRight(const std::string& utf8);

}  // namespace vorn
