#pragma once

#include <QImage>

#include "ui/settings/settings_window.hpp"

namespace vorn {

struct SettingsPicture {
    UsageModel& model;
    Preferences& preferences;
    AppRequests& requests;
    DesktopAppearance& appearance;
    SettingsWindow::Page page = SettingsWindow::Page::general;
    double pixelRatio = 1;  ///< Device pixels a point.
};

/// "settings-general", …: what a picture of the page is called.
const char* pictureName(SettingsWindow::Page page);

/// The settings as they stand, on a desktop with notices and a shortcut that works. Reads Claude Code's settings and
/// the login item unless the model is a demonstration; changes nothing. Waits for `claude` to tell its version where
/// that is shown. Null when the view cannot be loaded.
QImage pictureOf(QQmlEngine& engine, const SettingsPicture& picture);

}  // namespace vorn
