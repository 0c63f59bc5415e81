#include <cstdio>

#include "core/support/file_platform.hpp"

namespace vorn::file_platform {

bool exchangeNames(const char* one, const char* other) {
    return ::renamex_np(one, other, RENAME_SWAP) == 0;
}

}  // namespace vorn::file_platform
