#pragma once

#include <cstddef>

namespace vorn::relay {

/// Lets a pipe hold `bytes` before it is read, where the system can and allows it.
void growPipe(int descriptor, std::size_t bytes) noexcept;

}  // namespace vorn::relay
