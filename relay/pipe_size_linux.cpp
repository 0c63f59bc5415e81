#include <fcntl.h>

#include "relay/pipe_size.hpp"

namespace vorn::relay {

void growPipe(int descriptor, std::size_t bytes) noexcept {
    ::fcntl(descriptor, F_SETPIPE_SZ, static_cast<int>(bytes));
}

}  // namespace vorn::relay
