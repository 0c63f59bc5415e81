#pragma once

#include <QObject>
#include <QString>

#include "core/status_line/connection_state.hpp"
#include "core/status_line/status_line_integration.hpp"

namespace vorn {

class LoginItem;

/// What Vorn installs outside itself: the relay in Claude Code's settings and the login item. Main thread only. Values
/// are as fresh as the last `refresh`.
class Integrations : public QObject {
    Q_OBJECT

public:
    /// `loginItem`: null where the system has none; must outlive this.
    Integrations(StatusLineIntegration integration, LoginItem* loginItem, QObject* parent = nullptr);

    /// Reads everything again. `changed` comes when something is different.
    void refresh();
    /// The directory in which Claude Code was used last, whose settings may win over the user's. Reads everything again
    /// when it is another than before.
    void followProject(const std::string& directory);
    /// Does nothing where the system has no login item.
    void setLaunchAtLogin(bool on);
    /// Copies the relay afresh and puts it in front of the user's own status line.
    void connectStatusLine();
    void disconnectStatusLine();

    /// From now on nothing outside is changed; what would be changed fails with `reason`, a sentence for people.
    void setReadOnly(const QString& reason);
    /// The `reason` for `setReadOnly` in a demonstration.
    static QString demonstration();
    /// What `setReadOnly` was given; empty when changes are really made.
    [[nodiscard]] const QString& readOnlyReason() const { return m_readOnlyReason; }

    [[nodiscard]] bool launchAtLogin() const { return m_now.launchAtLogin; }
    [[nodiscard]] bool canLaunchAtLogin() const { return m_loginItem != nullptr; }
    [[nodiscard]] const StatusLineIntegration::State& statusLine() const { return m_now.statusLine; }
    /// The state of the status line with what keeps a connected relay from being heard.
    [[nodiscard]] const ConnectionState& connection() const { return m_now.connection; }
    /// Why the status line could not be read, connected or disconnected; empty when the last operation of that kind
    /// succeeded.
    [[nodiscard]] const QString& statusLineError() const { return m_now.statusLineError; }
    [[nodiscard]] const QString& loginItemError() const { return m_now.loginItemError; }
    /// What the user has to know of the last connecting or disconnecting beyond the state; empty when nothing.
    [[nodiscard]] const QString& statusLineRemark() const { return m_now.statusLineRemark; }
    [[nodiscard]] bool hasDownstreamCommand() const { return !m_now.downstreamCommand.isEmpty(); }
    /// The user's own status-line command, which keeps running behind the relay; empty when there is none.
    [[nodiscard]] const QString& downstreamCommand() const { return m_now.downstreamCommand; }
    [[nodiscard]] const StatusLineIntegration& integration() const { return m_integration; }

signals:
    void changed();

private:
    /// What has been announced.
    struct Published {
        bool launchAtLogin = false;
        StatusLineIntegration::State statusLine;
        ConnectionState connection;
        QString statusLineError;
        QString statusLineRemark;
        QString loginItemError;
        QString downstreamCommand;
        bool operator==(const Published&) const = default;
    };
    template <typename Action>
    void perform(QString& error, Action action);
    void readStatusLine();

    StatusLineIntegration m_integration;
    LoginItem* m_loginItem;
    Published m_now;
    Published m_announced;
    bool m_cannotRead = false;  ///< The error is about reading, so that reading clears it.
    QString m_readOnlyReason;
    std::string m_project;
};

}  // namespace vorn
