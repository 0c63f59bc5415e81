#include <cstdio>

#include <fcntl.h>

#include "core/support/file_platform.hpp"

namespace vorn::file_platform {

bool exchangeNames(const char* one, const char* other) {
    return ::renameat2(AT_FDCWD, one, AT_FDCWD, other, RENAME_EXCHANGE) == 0;
}

}  // namespace vorn::file_platform
