#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "ui/views/ring_item.hpp"
#include "ui/views/view_enums.hpp"

namespace vorn {

class UsageModel;

/// What the head of a window says and what its ring shows.
class SteerPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString headline READ headline NOTIFY changed FINAL)
    Q_PROPERTY(QString reason READ reason NOTIFY changed FINAL)
    Q_PROPERTY(QString factor READ factor NOTIFY changed FINAL)
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)
    Q_PROPERTY(vorn::StatusForViews::Status status READ status NOTIFY changed FINAL)
    Q_PROPERTY(double used READ used NOTIFY changed FINAL)
    Q_PROPERTY(bool segmented READ segmented NOTIFY changed FINAL)
    Q_PROPERTY(vorn::RingItem::Mark mark READ mark NOTIFY changed FINAL)
    Q_PROPERTY(double angle READ angle NOTIFY changed FINAL)

public:
    struct Content {
        QString headline;
        QString reason;
        QString factor;  ///< "↓0.6×"; empty when it has no number, which the ring shows as well.
        QString spoken;  ///< For those who listen.
        StatusForViews::Status status = StatusForViews::Comfortable;
        double used = -1;  ///< Percent, of the window that the head is about; negative while there is none.
        bool segmented = false;
        RingItem::Mark mark = RingItem::Dash;
        double angle = 0;  ///< Degrees, positive up; only of an arrow.
        bool operator==(const Content&) const = default;
    };

    /// `model` must outlive it.
    explicit SteerPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] const QString& headline() const { return m_content.headline; }
    [[nodiscard]] const QString& reason() const { return m_content.reason; }
    [[nodiscard]] const QString& factor() const { return m_content.factor; }
    [[nodiscard]] const QString& spoken() const { return m_content.spoken; }
    [[nodiscard]] StatusForViews::Status status() const { return m_content.status; }
    [[nodiscard]] double used() const { return m_content.used; }
    [[nodiscard]] bool segmented() const { return m_content.segmented; }
    [[nodiscard]] RingItem::Mark mark() const { return m_content.mark; }
    [[nodiscard]] double angle() const { return m_content.angle; }

signals:
    void changed();

private:
    void update();

    UsageModel& m_model;
    Content m_content;
};

SteerPresenter::Content steerContent(const UsageModel& model);

}  // namespace vorn
