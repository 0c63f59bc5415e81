#include "platform/linux/tray_status_item.hpp"

#include <QIcon>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "platform/linux/tray_menu.hpp"

namespace vorn {

using namespace std::chrono_literals;

namespace {

/// Heights of tray cells, once and twice, the largest first; a host scales what it does not find.
constexpr std::array kSizes{64, 48, 44, 32, 24, 22, 16};

/// A host asks for an item's properties, in several steps, before it gives it its place. The next item has to wait for
/// that; so it does until there were no more questions for a moment, but not for longer than this.
constexpr std::chrono::milliseconds kSettled = 50ms;
constexpr std::chrono::milliseconds kPatience = 500ms;

QIcon iconOf(const std::vector<QImage>& images) {
    QIcon icon;
    for (const QImage& image : images) {
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

}  // namespace

TrayStatusItem::TrayStatusItem(QMenu& menu) : m_menu(menu) {
    new TrayMenuAdaptor(menu);  // NOLINT(cppcoreguidelines-owning-memory): the menu is its parent
    m_enrolling.setSingleShot(true);
    connect(&m_enrolling, &QTimer::timeout, this, &TrayStatusItem::enrollNext);
    connect(&m_host, &TrayHost::restarted, this, &TrayStatusItem::rebuild);
    connect(&m_host, &TrayHost::shownChanged, this, &StatusItem::hostChanged);
}

void TrayStatusItem::show(StatusContent content) {
    m_images = std::move(content.images);
    if (std::exchange(m_toolTip, content.toolTip) != content.toolTip) {
        for (const Cell& cell : m_cells) {
            setToolTip(cell);
        }
    }
    update();
}

std::optional<QRect> TrayStatusItem::geometry() const {
    QRect all;
    for (const Cell& cell : m_cells) {
        all |= cell.embedded ? cell.embedded->geometry() : QRect();
    }
    return all.isEmpty() ? std::nullopt : std::optional(all);
}

/// For a host that knows nothing of the cells yet.
void TrayStatusItem::rebuild() {
    m_cells.clear();
    m_enrolled = 0;
    m_enrolling.stop();
    update();
}

void TrayStatusItem::update() {
    const std::size_t count = m_host.kind() == TrayHost::Kind::none ? 0 : m_images.size();
    while (m_cells.size() < count) {
        addCell();
    }
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        if (i < count) {
            draw(m_cells[i], m_images[m_host.addsToTheLeft() ? count - 1 - i : i]);
        }
        setShown(m_cells[i], i < count);
    }
    enrollNext();
}

void TrayStatusItem::addCell() {
    Cell cell;
    if (m_host.kind() == TrayHost::Kind::notifier) {
        cell.item = std::make_unique<NotifierItem>(QStringLiteral("vorn-%1").arg(m_cells.size() + 1), m_menu);
        connect(cell.item.get(), &NotifierItem::activated, this, &StatusItem::activated);
        connect(cell.item.get(), &NotifierItem::read, this, [this] {
            if (m_enrolling.isActive()) {
                m_enrolling.start(std::min(kSettled, std::chrono::milliseconds(m_patience.remainingTime())));
            }
        });
    } else {
        cell.embedded = std::make_unique<QSystemTrayIcon>();
        cell.embedded->setContextMenu(&m_menu);
        connect(cell.embedded.get(), &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger) {
                        emit activated();
                    }
                });
    }
    setToolTip(cell);
    m_cells.push_back(std::move(cell));
}

/// Nothing, as long as it would be the same, for which the largest size speaks: an idle program wakes no panel.
void TrayStatusItem::draw(Cell& cell, const StatusImage& image) {
    std::vector<QImage> images{image(kSizes.front())};
    if (images.front() == cell.shown) {
        return;
    }
    cell.shown = images.front();
    for (std::size_t i = 1; i < kSizes.size(); ++i) {
        images.push_back(image(kSizes[i]));
    }
    if (cell.item) {
        cell.item->setImages(images);
    } else {
        cell.embedded->setIcon(iconOf(images));
    }
}

void TrayStatusItem::setShown(const Cell& cell, bool isShown) {
    if (cell.item) {
        cell.item->setShown(isShown);
    } else {
        cell.embedded->setVisible(isShown);
    }
}

void TrayStatusItem::setToolTip(const Cell& cell) const {
    if (cell.item) {
        cell.item->setToolTip(m_toolTip);
    } else {
        cell.embedded->setToolTip(m_toolTip);
    }
}

/// One after the other: each has a connection of its own, and the bus keeps no order between connections.
void TrayStatusItem::enrollNext() {
    if (m_enrolling.isActive() || m_enrolled >= m_cells.size() || !m_cells[m_enrolled].item) {
        return;
    }
    m_cells[m_enrolled++].item->enroll();
    m_patience.setRemainingTime(kPatience);
    m_enrolling.start(kPatience);
}

std::unique_ptr<StatusItem> StatusItem::system(QMenu& menu) {
    return std::make_unique<TrayStatusItem>(menu);
}

bool StatusItem::hasCells() {
    return true;
}

}  // namespace vorn
