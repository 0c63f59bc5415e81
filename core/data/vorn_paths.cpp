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

fs::path userDataDirectory() {
#ifdef __APPLE__
    return homeDirectory() / "Library/Application Support";
#else
    // The XDG rules have relative values ignored.
    if (const auto data = environmentValue("XDG_DATA_HOME"); data && fs::path(*data).is_absolute()) {
        return *data;
    }
    return homeDirectory() / ".local/share";
#endif
}

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

fs::path statusLineSnapshot() {
    return root() / "statusline.json";
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

fs::path sharedChoices() {
    return root() / "choices.json";
}

fs::path breakdown() {
    return root() / "insights.json";
}

fs::path bridgeExecutable() {
    return root() / "bin/vorn-bridge";
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
