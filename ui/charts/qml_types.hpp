#pragma once

#include "ui/answer/qml_types.hpp"
#include "ui/controls/qml_types.hpp"

/// Made by the build; a call keeps the linker from dropping the types, which lie in a static library.
void qml_register_types_Vorn_Charts();

namespace vorn {

/// Makes the types of Vorn.Charts, and of what it imports, known to QML, once for the process.
inline void registerChartTypes() {
    registerAnswerTypes();
    registerControlTypes();
    [[maybe_unused]] static const bool isDone = (qml_register_types_Vorn_Charts(), true);
}

}  // namespace vorn
