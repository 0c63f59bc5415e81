#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <utility>

#include <QtQml/qqmlregistration.h>

namespace vorn {

/// A picture drawn by QPainter in one main colour. It does not mirror itself. Classes derived from it name it with its
/// namespace, which is how the tools that check QML look for it.
class PaintedItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    explicit PaintedItem(QQuickItem* parent = nullptr);

    [[nodiscard]] const QColor& color() const { return m_color; }
    void setColor(const QColor& color);

signals:
    void colorChanged();

protected:
    /// Stores a new value and draws again; whether it is another than before.
    template <typename T>
    bool change(T& member, T value) {
        if (member == value) {
            return false;
        }
        member = std::move(value);
        update();
        return true;
    }

private:
    QColor m_color = Qt::black;
};

}  // namespace vorn
