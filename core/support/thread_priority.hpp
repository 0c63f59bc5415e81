#pragma once

namespace vorn {

/// Lowers the priority of the calling thread, and of those it starts, below everything that a person is waiting for.
/// Cannot be undone; has no effect where the system refuses.
void lowerThreadPriority() noexcept;

}  // namespace vorn
