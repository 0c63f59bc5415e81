#include "core/data/own_files.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/data/vorn_paths.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

/// Besides a file itself: its lock, a damaged one that was put aside, and what a killed writer left.
bool belongsTo(std::string_view name, const std::string& file) {
    if (!name.starts_with(file)) {
        return false;
    }
    name.remove_prefix(file.size());
    return name.empty() || name == ".lock" || name == ".damaged" || name.starts_with(".vorn-new-");
}

struct Folder {
    fs::path path;
    std::vector<fs::path> files;  ///< What Vorn keeps in it.
};

bool isDirectory(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(fs::symlink_status(path, ignored));
}

/// Adds what is in the folder, and the folder itself when nothing in it is somebody else's. Of the folders in it, those
/// of Vorn have been added before.
void add(OwnFiles& result, const Folder& folder) {
    const std::size_t othersBefore = result.others.size();
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path)) {
        const fs::path& path = entry.path();
        if (std::ranges::find(result.own, path) != result.own.end()) {
            continue;
        }
        const bool isOurs = !isDirectory(path) && std::ranges::any_of(folder.files, [&](const fs::path& file) {
            return belongsTo(path.filename().string(), file.filename().string());
        });
        (isOurs ? result.own : result.others).push_back(path);
    }
    if (result.others.size() == othersBefore) {
        result.own.push_back(folder.path);
    }
}

/// Also when it is a link to one.
bool isThere(const fs::path& directory) {
    std::error_code ignored;
    return fs::is_directory(directory, ignored);
}

void addRoot(OwnFiles& result) {
    const fs::path root = VornPaths::root();
    if (!isThere(root)) {
        return;
    }
    const fs::path bridge = VornPaths::bridgeExecutable();
    const std::vector<Folder> inner = {{.path = bridge.parent_path(), .files = {bridge}},
                                       {.path = root / "probe", .files = {}}};
    for (const Folder& folder : inner) {
        if (isDirectory(folder.path)) {
            add(result, folder);
        }
    }
    add(result, {.path = root,
                 .files = {VornPaths::history(), VornPaths::integrationRecord(), VornPaths::connectionNote(),
                           VornPaths::statusLineSnapshot(), VornPaths::statusLineTurns(), VornPaths::moreLimits(),
                           VornPaths::resetPlan(), VornPaths::probeRecord(), VornPaths::probingLock(),
                           VornPaths::clientMemory(), VornPaths::sharedChoices(), VornPaths::breakdown(),
                           VornPaths::outcomes()}});
    // A folder that holds somebody else's is told by that.
    std::erase_if(result.others, [&](const fs::path& path) {
        return std::ranges::any_of(inner, [&](const Folder& folder) { return folder.path == path; }) &&
               isDirectory(path);
    });
}

}  // namespace

OwnFiles listOwnFiles() {
    OwnFiles result;
    addRoot(result);
    if (const auto settings = VornPaths::settings(); settings && isThere(settings->parent_path())) {
        add(result, {.path = settings->parent_path(), .files = {*settings}});
    }
    std::ranges::sort(result.others);
    return result;
}

}  // namespace vorn
