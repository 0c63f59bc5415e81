#pragma once

namespace vorn {

/// Makes the calling thread, and those it starts, give way to everything that a person is waiting for. For good;
/// without effect where the system refuses.
void lowerThreadPriority() noexcept;

}  // namespace vorn
