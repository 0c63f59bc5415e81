#include "core/data/claude_paths.hpp"

#include "core/support/file.hpp"

namespace vorn::ClaudePaths {
namespace fs = std::filesystem;

fs::path configDirectory() {
    const auto configured = environmentValue("CLAUDE_CONFIG_DIR");
    return configured ? expandTilde(*configured) : homeDirectory() / ".claude";
}

}  // namespace vorn::ClaudePaths
