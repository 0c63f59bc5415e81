#pragma once

#include "core/support/process/process.hpp"

namespace vorn {

/// From the first call on, an interrupt from the keyboard, a request to terminate or a lost terminal cancels what is
/// returned instead of ending the program. A second one ends the program, in case nothing acts on the first. A signal
/// that is ignored already (nohup) stays ignored.
const Cancellation& catchInterrupts();

}  // namespace vorn
