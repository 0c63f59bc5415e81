#include "core/support/account.hpp"

#include <pwd.h>
#include <unistd.h>

// A file of its own: what is linked statically cannot ask the system's account services and brings its own answer.
namespace vorn {

std::string accountHome() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "";
}

}  // namespace vorn
