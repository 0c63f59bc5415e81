#pragma once

#include "ui/answer/qml_types.hpp"
#include "ui/controls/qml_types.hpp"
#include "ui/window/qml_types.hpp"

/// Made by the build; a call keeps the linker from dropping the types, which lie in a static library.
void qml_register_types_Vorn_Popover();

namespace vorn {

/// Makes the types of Vorn.Popover, and of what it imports, known to QML, once for the process.
inline void registerPopoverTypes() {
    registerAnswerTypes();
    registerControlTypes();
    registerWindowTypes();
    [[maybe_unused]] static const bool isDone = (qml_register_types_Vorn_Popover(), true);
}

}  // namespace vorn
