#pragma once

#include <cstdlib>
#include <memory>

namespace vorn {

struct FreeXcbReply {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply or error of the X server, which the library leaves to its callers; null when there was none.
template <typename T>
using XcbReply = std::unique_ptr<T, FreeXcbReply>;

}  // namespace vorn
