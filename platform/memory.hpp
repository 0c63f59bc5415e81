#pragma once

namespace vorn {

/// Gives back to the system what the process holds but does not use: freed memory, and the code of libraries that is
/// not being run. The latter comes back by itself where it is needed. For the end of something large.
void releaseUnusedMemory();

}  // namespace vorn
