#include <cstdio>
#include <memory>

#include <pwd.h>
#include <unistd.h>

#include "core/support/account.hpp"

// Takes the place of the core's own, which asks services that only a dynamically linked program can load. It matters
// only to an account of the local system that runs without HOME.
namespace vorn {

std::string accountHome() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> accounts(std::fopen("/etc/passwd", "re"), &std::fclose);
    while (const passwd* entry = accounts ? ::fgetpwent(accounts.get()) : nullptr) {
        if (entry->pw_uid == ::getuid() && entry->pw_dir != nullptr) {
            return entry->pw_dir;
        }
    }
    return "";
}

}  // namespace vorn
