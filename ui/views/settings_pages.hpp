#pragma once

#include <QVariantMap>

#include "ui/views/claude_presenter.hpp"
#include "ui/views/layout_list_model.hpp"
#include "ui/views/live_glyph.hpp"
#include "ui/views/settings_presenter.hpp"

namespace vorn {

/// Everything that the settings' view shows. Must outlive the view.
class SettingsPages {
public:
    /// All of `deps` and `finder` must outlive it.
    SettingsPages(const SettingsWindow::Deps& deps, ClaudeFinder& finder);

    /// What the view is made with, on that page.
    [[nodiscard]] QVariantMap properties(SettingsWindow::Page page);

private:
    SettingsPresenter m_settings;
    LayoutListModel m_items;
    LiveGlyph m_glyph;
    ClaudePresenter m_claude;
};

}  // namespace vorn
