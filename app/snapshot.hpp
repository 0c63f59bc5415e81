#pragma once

#include <filesystem>

namespace vorn {

class Preferences;
class UsageModel;

struct SnapshotRequest {
    UsageModel& model;  ///< Shown as it stands.
    Preferences& preferences;
    std::filesystem::path directory;  ///< Made when it does not exist.
};

/// Renders every view, light and dark, at one and at two pixels a point: "popover-light.png", "popover-dark@2x.png", …
/// Needs no display (the platform "offscreen" will do) and writes nothing outside the directory. Returns the process's
/// exit code: when a picture cannot be made or written, 1 after a line about it on standard error.
int renderSnapshots(const SnapshotRequest& request);

}  // namespace vorn
