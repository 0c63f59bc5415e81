#pragma once

#include <string>

class QQuickWindow;

namespace vorn::test {

/// The window of views that is on the screen; null when there is none.
QQuickWindow* shownWindow();

/// What has the keyboard, by its name for those who listen; empty when that has none.
std::string focusedName();

}  // namespace vorn::test
