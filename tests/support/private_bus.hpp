#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <string_view>

#include "tests/support/temporary_directory.hpp"

namespace vorn::test {

/// A message bus of the test's own, with nobody on it. Needs a QCoreApplication.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const QString& address() const { return m_address; }
    /// A connection of its own for every caller.
    [[nodiscard]] QDBusConnection connection();
    /// From now on the bus runs the shell script for the first message to `name`.
    void makeActivatable(std::string_view name, std::string_view script);
    /// Takes the bus away from everybody.
    void kill();

    [[nodiscard]] const TemporaryDirectory& directory() const { return m_directory; }

private:
    TemporaryDirectory m_directory;
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

}  // namespace vorn::test
