#include "core/usage_command/claude_locator.hpp"

#include <algorithm>
#include <iterator>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "core/support/file.hpp"

namespace vorn::ClaudeLocator {
namespace fs = std::filesystem;
namespace {

bool isExecutableFile(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::vector<std::string> splitPath(std::string_view list) {
    std::vector<std::string> pieces;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        if (end != 0) {
            pieces.emplace_back(list.substr(0, end));
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return pieces;
}

}  // namespace

std::optional<fs::path> locate(const std::optional<std::string>& overridePath) {
    if (overridePath && !overridePath->empty()) {
        const fs::path chosen = expandTilde(*overridePath);
        return isExecutableFile(chosen) ? std::optional(chosen) : std::nullopt;
    }
    for (const std::string& directory : splitPath(searchPath(environmentValue("PATH"), homeDirectory().string()))) {
        const fs::path candidate = fs::path(directory) / "claude";
        if (isExecutableFile(candidate)) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::string searchPath(const std::optional<std::string>& inherited, const std::string& home) {
    std::vector<std::string> entries = splitPath(inherited.value_or(""));
    std::ranges::copy(candidateDirectories(home), std::back_inserter(entries));
    entries.insert(entries.end(), {"/usr/bin", "/bin", "/usr/sbin", "/sbin"});

    std::vector<std::string> unique;
    std::string joined;
    for (const std::string& entry : entries) {
        if (std::ranges::find(unique, entry) == unique.end()) {
            joined += (unique.empty() ? "" : ":") + entry;
            unique.push_back(entry);
        }
    }
    return joined;
}

std::array<std::string, 7> candidateDirectories(const std::string& home) {
    const std::string base = home == "/" ? "" : home;  // somebody without a home lives in "/"
    return {base + "/.local/bin",      base + "/.claude/local", "/opt/homebrew/bin", "/usr/local/bin",
            base + "/.npm-global/bin", base + "/.bun/bin",      base + "/.volta/bin"};
}

}  // namespace vorn::ClaudeLocator
