#include <fcntl.h>
#include <linux/fs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/support/file_platform.hpp"

namespace vorn::file_platform {

bool exchangeNames(const char* one, const char* other) {
    // Not every C library has a function for it.
    return ::syscall(SYS_renameat2, AT_FDCWD, one, AT_FDCWD, other, RENAME_EXCHANGE) == 0;
}

}  // namespace vorn::file_platform
