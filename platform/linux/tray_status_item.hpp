#pragma once

#include <QDeadlineTimer>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>
#include <memory>
#include <vector>

#include "platform/linux/notifier_item.hpp"
#include "platform/linux/tray_host.hpp"
#include "platform/status_item.hpp"

namespace vorn {

/// The status item as one tray cell per image. Hosts order cells by when they came, and later by their ids; so a part
/// that appears in the middle must not be a cell that appears in the middle. The cells stay where they are, what they
/// show moves on, and the ones that are too many are hidden. They are not taken away: xfce4-panel's tray has crashed
/// when several went at once.
class TrayStatusItem : public StatusItem {
    Q_OBJECT

public:
    explicit TrayStatusItem(QMenu& menu);

    void show(StatusContent content) override;
    [[nodiscard]] bool hasHost() const override { return m_host.isShown(); }
    [[nodiscard]] std::optional<QRect> geometry() const override;
    void tick() override { m_host.tick(); }

private:
    /// One cell: an item on the bus or an icon of Qt's, as the host has it.
    struct Cell {
        std::unique_ptr<NotifierItem> item;
        std::unique_ptr<QSystemTrayIcon> embedded;
        QImage shown;  ///< In the largest size.
    };

    void rebuild();
    void update();
    void addCell();
    static void draw(Cell& cell, const StatusImage& image);
    static void setShown(const Cell& cell, bool isShown);
    void setToolTip(const Cell& cell) const;
    void enrollNext();

    QMenu& m_menu;
    TrayHost m_host;
    std::vector<StatusImage> m_images;  ///< Left to right; drawn when there is a host.
    QString m_toolTip;
    std::vector<Cell> m_cells;   ///< As they came.
    std::size_t m_enrolled = 0;  ///< How many of them the host was told of.
    QTimer m_enrolling;          ///< Runs while the host takes in the last cell.
    QDeadlineTimer m_patience;   ///< How long that is waited for.
};

}  // namespace vorn
