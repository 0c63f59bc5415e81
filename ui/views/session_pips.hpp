#pragma once

#include <QtQml/qqmlregistration.h>

#include "ui/views/painted_item.hpp"

namespace vorn {

/// One pip for each session that fits into a week, in rows of twelve at most; the used ones pale, the last and the
/// present one partial. `color`: of those that are left.
class SessionPips : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double sessions READ sessions WRITE setSessions NOTIFY changed FINAL)
    Q_PROPERTY(double used READ used WRITE setUsed NOTIFY changed FINAL)
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY changed FINAL)
    Q_PROPERTY(double pipHeight READ pipHeight WRITE setPipHeight NOTIFY changed FINAL)
    Q_PROPERTY(QColor paleColor READ paleColor WRITE setPaleColor NOTIFY changed FINAL)

public:
    explicit SessionPips(QQuickItem* parent = nullptr);

    [[nodiscard]] double sessions() const { return m_sessions; }  ///< None are drawn for 0.
    [[nodiscard]] double used() const { return m_used; }
    [[nodiscard]] bool mirrored() const { return m_mirrored; }
    [[nodiscard]] double pipHeight() const { return m_pipHeight; }
    [[nodiscard]] const QColor& paleColor() const { return m_paleColor; }
    void setSessions(double sessions) { set(m_sessions, sessions); }
    void setUsed(double sessions) { set(m_used, sessions); }
    void setMirrored(bool mirrored) { set(m_mirrored, mirrored); }
    void setPipHeight(double height) { set(m_pipHeight, height); }
    void setPaleColor(const QColor& color) { set(m_paleColor, color); }

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    template <typename T>
    void set(T& member, T value) {
        if (change(member, std::move(value))) {
            fitHeight();
            emit changed();
        }
    }
    void fitHeight();

    double m_sessions = 0;
    double m_used = 0;
    bool m_mirrored = false;
    double m_pipHeight = 0;
    QColor m_paleColor = Qt::transparent;
};

}  // namespace vorn
