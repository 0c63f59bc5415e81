#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

namespace vorn {

class UsageModel;

/// How many full sessions the rest of the week allows.
class SessionsLeftPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString text READ text NOTIFY changed FINAL)

public:
    /// `model` must outlive it.
    explicit SessionsLeftPresenter(UsageModel& model, QObject* parent = nullptr);

    /// "3.4"; empty while it is not known.
    [[nodiscard]] const QString& text() const { return m_text; }

signals:
    void changed();

private:
    void update();

    UsageModel& m_model;
    QString m_text;
};

}  // namespace vorn
