#pragma once

#include <QObject>
#include <QString>

#include "core/sources/status_line_integration.hpp"

namespace vorn {

class LoginItem;

/// What Vorn installs outside itself: the relay in Claude Code's settings and the login item. Main thread only. Values
/// are as fresh as the last `refresh`.
class Integrations : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin NOTIFY changed)
    Q_PROPERTY(QString statusLineError READ statusLineError NOTIFY changed)
    Q_PROPERTY(QString loginItemError READ loginItemError NOTIFY changed)
    Q_PROPERTY(bool hasDownstreamCommand READ hasDownstreamCommand NOTIFY changed)

public:
    /// `loginItem`: null where the system has none; must outlive this.
    Integrations(StatusLineIntegration integration, LoginItem* loginItem, QObject* parent = nullptr);

    void refresh();
    void setLaunchAtLogin(bool on);
    void connectStatusLine();
    void disconnectStatusLine();

    /// A demonstration: from now on nothing outside is changed, and connecting says so instead.
    void setReadOnly(const QString& reason);

    [[nodiscard]] bool launchAtLogin() const { return m_launchAtLogin; }
    [[nodiscard]] bool canLaunchAtLogin() const { return m_loginItem != nullptr; }
    [[nodiscard]] const StatusLineIntegration::State& statusLine() const { return m_statusLine; }
    /// Empty when the last operation of its kind succeeded.
    [[nodiscard]] const QString& statusLineError() const { return m_statusLineError; }
    [[nodiscard]] const QString& loginItemError() const { return m_loginItemError; }
    [[nodiscard]] bool hasDownstreamCommand() const { return !m_downstreamCommand.isEmpty(); }
    /// The user's own status-line command, which keeps running behind the relay; empty when there is none.
    [[nodiscard]] const QString& downstreamCommand() const { return m_downstreamCommand; }
    [[nodiscard]] const StatusLineIntegration& integration() const { return m_integration; }

signals:
    void changed();

private:
    StatusLineIntegration m_integration;
    LoginItem* m_loginItem;
    bool m_launchAtLogin = false;
    StatusLineIntegration::State m_statusLine;
    QString m_statusLineError;
    QString m_loginItemError;
    QString m_downstreamCommand;
    QString m_readOnlyReason;
};

}  // namespace vorn
