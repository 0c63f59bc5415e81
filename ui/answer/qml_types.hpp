#pragma once

#include "ui/controls/qml_types.hpp"
#include "ui/tray/qml_types.hpp"
#include "ui/window/qml_types.hpp"

/// Made by the build; a call keeps the linker from dropping the types, which lie in a static library.
void qml_register_types_Vorn_Answer();

namespace vorn {

/// Makes the types of Vorn.Answer, and of what it imports, known to QML, once for the process.
inline void registerAnswerTypes() {
    registerControlTypes();
    registerTrayTypes();
    registerWindowTypes();
    [[maybe_unused]] static const bool isDone = (qml_register_types_Vorn_Answer(), true);
}

}  // namespace vorn
