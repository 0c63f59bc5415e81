#include "cli/runtime_file.hpp"

#include "core/data/vorn_paths.hpp"
#include "core/support/local_socket.hpp"

namespace vorn::cli {
namespace fs = std::filesystem;

std::optional<fs::path> findRuntimeFile(const char* ending) {
    auto place = findLocalSocket(VornPaths::root());
    return place ? std::optional(place->replace_extension(ending)) : std::nullopt;
}

std::optional<fs::path> makeRuntimeFile(const char* ending) try {
    return makeLocalSocketPlace(VornPaths::root()).replace_extension(ending);
} catch (const fs::filesystem_error&) {
    return std::nullopt;
}

}  // namespace vorn::cli
