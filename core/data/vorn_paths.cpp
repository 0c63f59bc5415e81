#include "core/data/vorn_paths.hpp"

#include <mutex>

#include "core/support/file.hpp"

namespace vorn::VornPaths {
namespace fs = std::filesystem;
namespace {

struct Override {
    std::mutex mutex;
    std::optional<fs::path> root;
};

Override& sharedOverride() {
    static Override instance;
    return instance;
}

#ifdef __APPLE__
fs::path userDataDirectory() {
    return homeDirectory() / "Library/Application Support";
}
#else
/// What the variable says, else that below the home directory.
fs::path xdgDirectory(const char* variable, const char* usual) {
    // The XDG rules have relative values ignored.
    if (const auto value = environmentValue(variable); value && fs::path(*value).is_absolute()) {
        return *value;
    }
    return homeDirectory() / usual;
}

fs::path userDataDirectory() {
    return xdgDirectory("XDG_DATA_HOME", ".local/share");
}
#endif

}  // namespace

void setRootOverride(std::optional<fs::path> root) {
    Override& shared = sharedOverride();
    const std::lock_guard lock(shared.mutex);
    shared.root = std::move(root);
}

std::optional<fs::path> rootOverride() {
    Override& shared = sharedOverride();
    const std::lock_guard lock(shared.mutex);
    return shared.root;
}

fs::path root() {
    if (auto chosen = rootOverride()) {
        return *std::move(chosen);
    }
    if (const auto home = environmentValue("VORN_HOME")) {
        return expandTilde(*home);
    }
    return userDataDirectory() / "Vorn";
}

void ensureRoot() {
    createPrivateDirectories(root());
}

fs::path history() {
    return root() / "history.jsonl";
}

fs::path integrationRecord() {
    return root() / "integration.json";
}

fs::path connectionNote() {
    return root() / "connection.json";
}

fs::path statusLineSnapshot() {
    return root() / "statusline.json";
}

fs::path statusLineTurns() {
    return root() / "statusline-turns.txt";
}

fs::path moreLimits() {
    return root() / "statusline-limits.json";
}

fs::path resetPlan() {
    return root() / "reset-plan.json";
}

fs::path probeRecord() {
    return root() / "probe.json";
}

fs::path probingLock() {
    return root() / "probing.lock";
}

fs::path clientMemory() {
    return root() / "client.json";
}

fs::path sharedChoices() {
    return root() / "choices.json";
}

fs::path outcomes() {
    return root() / "outcomes.jsonl";
}

fs::path breakdown() {
    return root() / "insights.json";
}

fs::path bridgeExecutable() {
    return root() / "bin/vorn-bridge";
}

std::optional<fs::path> settings() {
#ifdef __APPLE__
    return std::nullopt;
#else
    if (rootOverride() || environmentValue("VORN_HOME")) {
        return std::nullopt;
    }
    return xdgDirectory("XDG_CONFIG_HOME", ".config") / "Vorn/Vorn.conf";
#endif
}

fs::path probeWorkingDirectory() {
    fs::path directory = root() / "probe";
    try {
        createPrivateDirectories(directory);
    } catch (const fs::filesystem_error&) {
        // Starting the process there reports it.
    }
    return directory;
}

}  // namespace vorn::VornPaths
