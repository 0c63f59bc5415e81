#pragma once

/// Made by the build; a call keeps the linker from dropping the types, which lie in a static library.
void qml_register_types_Vorn_Controls();

namespace vorn {

/// Makes the types of Vorn.Controls known to QML, once for the process.
inline void registerControlTypes() {
    [[maybe_unused]] static const bool isDone = (qml_register_types_Vorn_Controls(), true);
}

}  // namespace vorn
