#pragma once

#include <QObject>
#include <QString>
#include <memory>

namespace vorn {

/// Control-Alt-P (Control-Option-P) from anywhere, registered for as long as the object lives.
class HotKey : public QObject {
    Q_OBJECT

public:
    /// Never null; tries to register at once, and where the desktop asks its user first, later.
    static std::unique_ptr<HotKey> system();

    [[nodiscard]] virtual bool isRegistered() const = 0;
    /// Why it does not work, for people ("Another program uses Ctrl+Alt+P."); empty while it does or is being asked
    /// for.
    [[nodiscard]] virtual QString problem() const = 0;
    /// The keys as the desktop calls them, e.g. "Ctrl+Alt+P".
    [[nodiscard]] virtual QString keys() const = 0;
    /// To be called every few seconds: tries again, now and then, what nothing announces.
    virtual void tick() {}

signals:
    void pressed();
    void stateChanged();
};

}  // namespace vorn
