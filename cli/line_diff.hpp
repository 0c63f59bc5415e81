#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorn::cli {

/// The lines of a unified diff, without the two that name the files; none when the texts are equal.
std::vector<std::string> lineDiff(std::string_view before, std::string_view after);

}  // namespace vorn::cli
