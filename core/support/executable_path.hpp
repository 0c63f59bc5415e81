#pragma once

#include <filesystem>

namespace vorn {

/// The file of the program that is running, without links. Empty when the system does not tell.
std::filesystem::path runningExecutable();

}  // namespace vorn
