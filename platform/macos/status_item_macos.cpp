#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <array>
#include <utility>

#include "platform/status_item.hpp"

namespace vorn {

namespace {

/// The menu bar's height in points, once and twice.
constexpr std::array kHeights{22, 44};

class MenuBarStatusItem : public StatusItem {
public:
    explicit MenuBarStatusItem(QMenu& menu) : m_menu(menu) {
        // Not setContextMenu: the system would open it on the main button, too.
        connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Context) {
                m_menu.popup(m_icon.geometry().bottomLeft());
            } else if (reason == QSystemTrayIcon::Trigger) {
                emit activated();
            }
        });
    }

    void show(StatusContent content) override {
        std::vector<QImage> images;
        for (const int height : kHeights) {
            images.push_back(content.images.front()(height));
            images.back().setDevicePixelRatio(static_cast<double>(height) / kHeights.front());
        }
        if (std::exchange(m_images, images) != images || m_isTemplate != content.isTemplate) {
            m_isTemplate = content.isTemplate;
            QIcon icon;
            for (const QImage& image : images) {
                icon.addPixmap(QPixmap::fromImage(image));
            }
            icon.setIsMask(m_isTemplate);
            m_icon.setIcon(icon);
        }
        m_icon.setToolTip(content.toolTip);
        m_icon.show();
    }

    [[nodiscard]] bool hasHost() const override { return true; }

    [[nodiscard]] std::optional<QRect> geometry() const override {
        const QRect geometry = m_icon.geometry();
        return geometry.isValid() ? std::optional(geometry) : std::nullopt;
    }

private:
    QMenu& m_menu;
    QSystemTrayIcon m_icon;
    std::vector<QImage> m_images;
    bool m_isTemplate = false;
};

}  // namespace

std::unique_ptr<StatusItem> StatusItem::system(QMenu& menu) {
    return std::make_unique<MenuBarStatusItem>(menu);
}

bool StatusItem::hasCells() {
    return false;
}

}  // namespace vorn
