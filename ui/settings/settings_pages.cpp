#include "ui/settings/settings_pages.hpp"

namespace vorn {

SettingsPages::SettingsPages(const SettingsWindow::Deps& deps, ClaudeFinder& finder)
    : m_settings(deps),
      m_items(deps.preferences),
      m_glyph({.preferences = deps.preferences,
               .model = deps.model,
               .appearance = deps.appearance,
               .panel = deps.panel,
               .hasCells = deps.hasCells}),
      m_claude(
          {.model = deps.model, .preferences = deps.preferences, .integrations = deps.integrations, .finder = finder}),
      m_requests(deps.requests) {}

QVariantMap SettingsPages::properties(SettingsWindow::Page page) {
    return {{"settings", QVariant::fromValue(&m_settings)}, {"items", QVariant::fromValue(&m_items)},
            {"glyph", QVariant::fromValue(&m_glyph)},       {"claude", QVariant::fromValue(&m_claude)},
            {"requests", QVariant::fromValue(&m_requests)}, {"page", static_cast<int>(page)}};
}

}  // namespace vorn
