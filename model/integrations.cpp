#include "model/integrations.hpp"

#include <exception>
#include <utility>

#include "core/status_line/status_line_connection.hpp"
#include "core/wording/connection_words.hpp"
#include "platform/login_item.hpp"

namespace vorn {

Integrations::Integrations(StatusLineIntegration integration, LoginItem* loginItem, QObject* parent)
    : QObject(parent), m_integration(std::move(integration)), m_loginItem(loginItem) {}

void Integrations::setReadOnly(const QString& reason) {
    m_readOnlyReason = reason;
}

QString Integrations::demonstration() {
    return tr("This is a demonstration: nothing is connected or changed.");
}

void Integrations::refresh() {
    if (m_loginItem != nullptr) {
        m_now.launchAtLogin = m_loginItem->isEnabled();
    }
    readStatusLine();
    m_now.downstreamCommand = QString::fromStdString(m_integration.downstreamCommand().value_or(std::string()));
    if (m_now != m_announced) {
        m_announced = m_now;
        emit changed();
    }
}

void Integrations::followProject(const std::string& directory) {
    if (std::exchange(m_project, directory) != directory) {
        refresh();
    }
}

void Integrations::readStatusLine() try {
    m_now.statusLine = m_integration.state();
    m_now.connection = connectionState(m_integration, strongerSettings(m_project));
    if (std::exchange(m_cannotRead, false)) {
        m_now.statusLineError.clear();
    }
} catch (const std::exception& error) {
    m_cannotRead = true;
    m_now.statusLineError = QString::fromUtf8(error.what());
}

/// Does what the user asked for, leaves in `error` how it went, and then shows what is really there.
template <typename Action>
void Integrations::perform(QString& error, Action action) {
    if (m_readOnlyReason.isEmpty()) {
        try {
            action();
            error.clear();
        } catch (const IntegrationError& failure) {
            error = QString::fromStdString(ConnectionWords::problem(failure));
        } catch (const std::exception& failure) {
            error = QString::fromUtf8(failure.what());
        }
    } else {
        error = m_readOnlyReason;
    }
    refresh();
}

void Integrations::setLaunchAtLogin(bool on) {
    if (m_loginItem != nullptr) {
        perform(m_now.loginItemError, [&] { m_loginItem->setEnabled(on); });
    }
}

void Integrations::connectStatusLine() {
    m_cannotRead = false;
    m_now.statusLineRemark.clear();
    perform(m_now.statusLineError, [this] {
        const auto outcome = StatusLineConnection::connect(m_integration, systemNow());
        m_now.statusLineRemark = QString::fromStdString(ConnectionWords::remark(outcome));
    });
}

void Integrations::disconnectStatusLine() {
    m_cannotRead = false;
    m_now.statusLineRemark.clear();
    perform(m_now.statusLineError, [this] {
        const auto outcome = StatusLineConnection::disconnect(m_integration);
        m_now.statusLineRemark = QString::fromStdString(ConnectionWords::remark(outcome));
    });
}

}  // namespace vorn
