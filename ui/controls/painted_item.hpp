#pragma once

#include <QColor>
#include <QQuickPaintedItem>

#include <QtQml/qqmlregistration.h>

namespace vorn {

/// A picture drawn by QPainter in one main colour. It does not mirror itself. Classes derived from it declare what else
/// it is drawn from as properties with MEMBER that notify by `changed`, and name it with its namespace, which is how
/// the tools that check QML look for it.
class PaintedItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged FINAL)

public:
    explicit PaintedItem(QQuickItem* parent = nullptr);

    [[nodiscard]] const QColor& color() const { return m_color; }

signals:
    // Either draws it again. Two, since the colour may be bound to something else of the item.
    void colorChanged();
    void changed();

private:
    QColor m_color = Qt::black;
};

}  // namespace vorn
