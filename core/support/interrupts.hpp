#pragma once

#include "core/support/process.hpp"

namespace vorn {

/// From the first call on, an interrupt from the keyboard, a request to terminate or a lost terminal cancels what is
/// returned instead of ending the program. The second one ends it, should the first not be heard. One that is ignored
/// (nohup) stays so.
const Cancellation& catchInterrupts();

}  // namespace vorn
