#include <system_error>

#include "core/support/executable_path.hpp"

namespace vorn {

std::filesystem::path runningExecutable() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

}  // namespace vorn
