#include "platform/panel_brightness.hpp"

#include "platform/desktop_appearance.hpp"

namespace vorn {

PanelBrightness::PanelBrightness(const DesktopAppearance& appearance) : m_appearance(appearance) {
    connect(&appearance, &DesktopAppearance::changed, this, &PanelBrightness::changed);
}

bool PanelBrightness::isDark() const {
    return m_panelIsDark.value_or(m_appearance.isDark());
}

void PanelBrightness::setPanelIsDark(std::optional<bool> isDark) {
    if (m_panelIsDark != isDark) {
        m_panelIsDark = isDark;
        emit changed();
    }
}

}  // namespace vorn
