#pragma once

/// Made by the build; a call keeps the linker from dropping the types, which lie in a static library.
void qml_register_types_Vorn_Window();

namespace vorn {

/// Makes the types of Vorn.Window known to QML, once for the process.
inline void registerWindowTypes() {
    [[maybe_unused]] static const bool isDone = (qml_register_types_Vorn_Window(), true);
}

}  // namespace vorn
