#include "core/support/home_owner.hpp"

#include <memory>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/support/file.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

/// Root where there is nothing to be found out.
uid_t ownerOf(const fs::path& path) {
    struct stat status {};
    for (fs::path place = path; !place.empty(); place = place.parent_path()) {
        if (::stat(place.c_str(), &status) == 0) {
            return status.st_uid;
        }
        if (place == place.parent_path()) {
            break;
        }
    }
    return 0;
}

bool isBelow(const fs::path& path, const fs::path& directory) {
    const std::string start = directory.string() + "/";
    return path == directory || path.string().starts_with(start);
}

std::string nameOf(uid_t user) {
    const passwd* entry = ::getpwuid(user);
    return entry != nullptr && entry->pw_name != nullptr ? entry->pw_name : std::to_string(user);
}

}  // namespace

std::optional<std::string> strangersHome(const fs::path& path) {
    if (::geteuid() != 0) {
        return std::nullopt;
    }
    const fs::path place = fs::absolute(path).lexically_normal();
    uid_t owner = ownerOf(place);
    if (const fs::path home = homeDirectory(); owner == 0 && home != "/" && isBelow(place, home)) {
        owner = ownerOf(home);
    }
    return owner == 0 ? std::nullopt : std::optional(nameOf(owner));
}

}  // namespace vorn
