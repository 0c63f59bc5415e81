#include <cstdint>
#include <string>
#include <system_error>

#include <mach-o/dyld.h>

#include "core/support/executable_path.hpp"

namespace vorn {

std::filesystem::path runningExecutable() {
    std::uint32_t size = 0;
    ::_NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (::_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    std::error_code ignored;
    return std::filesystem::canonical(path.c_str(), ignored);
}

}  // namespace vorn
