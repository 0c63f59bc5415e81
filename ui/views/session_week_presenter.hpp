#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

namespace vorn {

class UsageModel;

/// What a session costs of the week, and how many are left.
class SessionWeekPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString waiting READ waiting NOTIFY changed FINAL)
    Q_PROPERTY(QString cost READ cost NOTIFY changed FINAL)
    Q_PROPERTY(QString perWeek READ perWeek NOTIFY changed FINAL)
    Q_PROPERTY(QString left READ left NOTIFY changed FINAL)
    Q_PROPERTY(QString measured READ measured NOTIFY changed FINAL)
    Q_PROPERTY(double sessions READ sessions NOTIFY changed FINAL)
    Q_PROPERTY(double usedSessions READ usedSessions NOTIFY changed FINAL)

public:
    struct Content {
        QString waiting;          ///< What is missing while nothing can be said; then everything else is empty.
        QString cost;             ///< "11.4% of week"
        QString perWeek;          ///< "8.8"; "∞" when a session costs nothing.
        QString left;             ///< "3.4"; empty while the week is unknown.
        QString measured;         ///< What it was learnt from.
        double sessions = 0;      ///< That fit into a week, for drawing; 0 when there are too many to draw.
        double usedSessions = 0;  ///< Of those.
        bool operator==(const Content&) const = default;
    };

    /// `model` must outlive it.
    explicit SessionWeekPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] const QString& waiting() const { return m_content.waiting; }
    [[nodiscard]] const QString& cost() const { return m_content.cost; }
    [[nodiscard]] const QString& perWeek() const { return m_content.perWeek; }
    [[nodiscard]] const QString& left() const { return m_content.left; }
    [[nodiscard]] const QString& measured() const { return m_content.measured; }
    [[nodiscard]] double sessions() const { return m_content.sessions; }
    [[nodiscard]] double usedSessions() const { return m_content.usedSessions; }

signals:
    void changed();

private:
    void update();

    UsageModel& m_model;
    Content m_content;
};

SessionWeekPresenter::Content sessionWeekContent(const UsageModel& model);

}  // namespace vorn
