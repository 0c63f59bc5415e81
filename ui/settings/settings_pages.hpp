#pragma once

#include <QVariantMap>

#include "ui/settings/claude_presenter.hpp"
#include "ui/settings/layout_list_model.hpp"
#include "ui/settings/settings_presenter.hpp"
#include "ui/tray/live_glyph.hpp"
#include "ui/window/app_requests.hpp"

namespace vorn {

/// Everything that the settings' view shows. Must outlive the view.
class SettingsPages {
public:
    /// All of `deps` and `finder` must outlive it.
    SettingsPages(const SettingsWindow::Deps& deps, ClaudeFinder& finder);

    /// The properties that the view is made with, to begin on `page`.
    [[nodiscard]] QVariantMap properties(SettingsWindow::Page page);

private:
    SettingsPresenter m_settings;
    LayoutListModel m_items;
    LiveGlyph m_glyph;
    ClaudePresenter m_claude;
    AppRequests& m_requests;
};

}  // namespace vorn
