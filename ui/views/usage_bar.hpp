#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// How much of a limit is used, where that leads, and where even use would be. The bar itself lies in the middle of the
/// item, which the tick of even pace fills from top to bottom. `color`: of what is used.
class UsageBar : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double used READ used WRITE setUsed NOTIFY changed FINAL)
    Q_PROPERTY(double projected READ projected WRITE setProjected NOTIFY changed FINAL)
    Q_PROPERTY(double evenPace READ evenPace WRITE setEvenPace NOTIFY changed FINAL)
    Q_PROPERTY(int segments READ segments WRITE setSegments NOTIFY changed FINAL)
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY changed FINAL)
    Q_PROPERTY(double barHeight READ barHeight WRITE setBarHeight NOTIFY changed FINAL)
    Q_PROPERTY(QColor paleColor READ paleColor WRITE setPaleColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor tickColor READ tickColor WRITE setTickColor NOTIFY changed FINAL)

public:
    using PaintedItem::PaintedItem;

    // Shares of the bar, 0..1; negative when there is nothing to draw.
    [[nodiscard]] double used() const { return m_used; }
    [[nodiscard]] double projected() const { return m_projected; }
    [[nodiscard]] double evenPace() const { return m_evenPace; }
    [[nodiscard]] int segments() const { return m_segments; }
    [[nodiscard]] bool mirrored() const { return m_mirrored; }
    [[nodiscard]] double barHeight() const { return m_barHeight; }
    [[nodiscard]] const QColor& paleColor() const { return m_paleColor; }
    [[nodiscard]] const QColor& trackColor() const { return m_trackColor; }
    [[nodiscard]] const QColor& tickColor() const { return m_tickColor; }
    void setUsed(double share) { set(m_used, share); }
    void setProjected(double share) { set(m_projected, share); }
    void setEvenPace(double share) { set(m_evenPace, share); }
    void setSegments(int segments) { set(m_segments, segments); }
    void setMirrored(bool mirrored) { set(m_mirrored, mirrored); }
    void setBarHeight(double pixels) { set(m_barHeight, pixels); }
    void setPaleColor(const QColor& color) { set(m_paleColor, color); }
    void setTrackColor(const QColor& color) { set(m_trackColor, color); }
    void setTickColor(const QColor& color) { set(m_tickColor, color); }

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    template <typename T>
    void set(T& member, T value) {
        if (change(member, std::move(value))) {
            emit changed();
        }
    }
    [[nodiscard]] QPainterPath outline() const;
    void paintFills(QPainter& painter) const;

    double m_used = 0;
    double m_projected = -1;
    double m_evenPace = -1;
    int m_segments = 1;
    bool m_mirrored = false;
    double m_barHeight = 8;
    QColor m_paleColor;
    QColor m_trackColor;
    QColor m_tickColor;
};

}  // namespace vorn
