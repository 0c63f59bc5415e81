#pragma once

#include <QImage>
#include <QObject>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QMenu;

namespace vorn {

/// Draws one image for a square or a strip of that height, in device pixels; always the same one. Owns what it draws,
/// since it may be asked at any later time.
using StatusImage = std::function<QImage(int height)>;

struct StatusContent {
    std::vector<StatusImage> images;  ///< Left to right; exactly one where the host shows one wide image.
    QString toolTip;
    bool isTemplate = false;  ///< In one colour, which a system that can may choose itself.
};

/// Vorn's place in the tray or menu bar. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

public:
    /// The system's; never null. `menu` (right button) must outlive it.
    static std::unique_ptr<StatusItem> system(QMenu& menu);
    /// Whether the host shows square cells rather than one wide image.
    static bool hasCells();

    /// Shows this from now on, also in a host that appears later.
    virtual void show(StatusContent content) = 0;
    /// Whether there is a host that shows it; `hostChanged` tells of changes.
    [[nodiscard]] virtual bool hasHost() const = 0;
    /// Where it is on the screen, as far as the host tells.
    [[nodiscard]] virtual std::optional<QRect> geometry() const = 0;
    /// To be called every few seconds: looks for a host that nothing announces.
    virtual void tick() {}

signals:
    /// A click with the main button.
    void activated();
    void hostChanged();
};

}  // namespace vorn
