#include "platform/desktop_appearance.hpp"

namespace vorn {

void DesktopAppearance::setLook(const Look& look) {
    if (look == m_look) {
        return;
    }
    m_look = look;
    emit changed();
}

}  // namespace vorn
