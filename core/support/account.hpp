#pragma once

#include <string>

namespace vorn {

/// The home directory that the system has on record for the user who runs this process; empty when it has none.
std::string accountHome();

}  // namespace vorn
