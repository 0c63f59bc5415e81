#pragma once

#include <filesystem>
#include <vector>

namespace vorn {

/// What lies in Vorn's directory and in that of its settings. A link is an entry like any other: it is never followed.
struct OwnFiles {
    std::vector<std::filesystem::path> own;     ///< Files and folders that Vorn made, in an order to remove them in.
    std::vector<std::filesystem::path> others;  ///< Everything else; the folders that hold it are not removed.
};

/// The entries under `VornPaths::root()` and beside `VornPaths::settings()`; none where there is no such directory.
/// Throws std::filesystem::filesystem_error when one cannot be listed.
OwnFiles listOwnFiles();

}  // namespace vorn
