#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace vorn {

/// One notice to the user.
struct Notice {
    QString id;  ///< A later notice with the same identifier replaces the earlier one where it is still shown.
    QString title;
    QString body;  ///< Plain text.
};

/// The desktop's notifications. Main thread only; nothing here blocks on the desktop.
class NotificationCenter : public QObject {
    Q_OBJECT

public:
    /// The system's; null where there can be none.
    static std::unique_ptr<NotificationCenter> system();

    /// Asks for permission to show notices with sound. `onAnswer` comes on the main thread: once with the answer, and
    /// again whenever it changes (a server that appears or goes away).
    virtual void requestAuthorization(std::function<void(bool granted)> onAnswer) = 0;
    /// Shows it with the system's default sound; does nothing while notices cannot be shown. Errors are ignored.
    virtual void post(const Notice& notice) = 0;
    /// Why notices cannot be shown at the moment, for people; empty while they can.
    [[nodiscard]] virtual QString problem() const = 0;

signals:
    /// The user clicked a notice.
    void activated(const QString& id);
    void problemChanged();
};

}  // namespace vorn
