#include "model/instance_server.hpp"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/socket.h>
#include <unistd.h>

#include "core/support/json.hpp"
#include "core/support/local_socket.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostConnections = 16;
constexpr std::chrono::milliseconds kTimeToAsk = 2s;
/// When the system has no more descriptors for those who connect.
constexpr std::chrono::milliseconds kRestAfterFailure = 1s;
constexpr std::chrono::milliseconds kRetry{20};

/// One line of JSON. `problem`: empty when all was done.
std::string replyOf(const QString& problem) {
    return problem.isEmpty() ? dumpJson({{"reply", "ok"}}) : dumpJson({{"error", problem.toStdString()}});
}

/// What another one answered; empty when it did what was asked.
QString problemIn(const std::string& reply) {
    const auto said = parseJson(reply);
    const nlohmann::json* const error = said && said->is_object() ? findMember(*said, "error") : nullptr;
    return error != nullptr && error->is_string() ? QString::fromStdString(error->get<std::string>()) : QString();
}

}  // namespace

/// One who connected, from then until it has its answer or has taken too long to ask.
class InstanceServer::Connection : public QObject {
public:
    Connection(Descriptor socket, InstanceServer& server)
        : QObject(&server),
          m_server(server),
          m_socket(std::move(socket)),
          m_notifier(m_socket.get(), QSocketNotifier::Read) {
        connect(&m_notifier, &QSocketNotifier::activated, this, &Connection::read);
        m_timer.setSingleShot(true);
        connect(&m_timer, &QTimer::timeout, this, &Connection::close);
        m_timer.start(kTimeToAsk);
    }

    ~Connection() override { m_notifier.setEnabled(false); }

    /// For good.
    void close() {
        m_timer.stop();
        m_notifier.setEnabled(false);
        m_socket.reset();
        std::erase(m_server.m_connections, this);
        deleteLater();
    }

private:
    /// What has come, and no more than one piece of it: others wait as well.
    void read() {
        std::array<char, 16384> buffer;
        const ssize_t count = ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        if (count <= 0) {
            close();
            return;
        }
        m_received.append(buffer.data(), count);
        if (const auto end = m_received.indexOf('\n'); end >= 0) {
            answerTo(m_received.first(end));
        } else if (static_cast<std::size_t>(m_received.size()) > kLongestRequest) {
            answerTo({});
        }
    }

    void answerTo(const QByteArray& line) {
        m_timer.stop();
        m_notifier.setEnabled(false);
        // Whoever handles it may run an event loop of its own.
        const QPointer<Connection> self(this);
        const QString problem = m_server.handle(line.toStdString());
        if (self) {
            answer(m_socket, replyOf(problem));
            close();
        }
    }

    InstanceServer& m_server;
    Descriptor m_socket;
    QSocketNotifier m_notifier;
    QTimer m_timer;
    QByteArray m_received;
};

InstanceServer::InstanceServer(fs::path home, QObject* parent) : QObject(parent), m_home(std::move(home)) {}

InstanceServer::~InstanceServer() {
    for (Connection* connection : std::exchange(m_connections, {})) {
        delete connection;
    }
    if (m_listener.isOpen()) {
        m_notifier->setEnabled(false);
        // Before the lock goes: after that the name may be another's.
        ::unlink(m_socket.c_str());
    }
}

fs::path InstanceServer::lockFile() const {
    return fs::path(m_socket).replace_extension(".lock");
}

InstanceServer::Start InstanceServer::start(const InstanceRequest& request, Patience patience) try {
    m_socket = makeLocalSocketPlace(m_home);
    const auto deadline = std::chrono::steady_clock::now() + patience.toListen;
    for (;;) {
        std::error_code error;
        auto lock = FileLock::acquire(lockFile(), 0ms, error);
        // Also with the lock: somebody may have removed the file that another one holds it on.
        if (const auto reply = sendRequest(m_socket, encode(request), patience.toAnswer)) {
            const QString refused = problemIn(*reply);
            return refused.isEmpty() ? Start{.kind = Start::Kind::handedOver}
                                     : Start{.kind = Start::Kind::failed, .problem = refused};
        }
        if (lock) {
            return beFirst(*std::move(lock));
        }
        if (error != std::errc::device_or_resource_busy) {
            throw fs::filesystem_error("cannot lock", lockFile(), error);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return {.kind = Start::Kind::failed, .problem = unanswered()};
        }
        std::this_thread::sleep_for(kRetry);
    }
} catch (const std::system_error& error) {
    return {.problem = QStringLiteral("Vorn cannot be found by programs that are started later: %1")
                           .arg(QString::fromUtf8(error.what()))};
}

InstanceServer::Start InstanceServer::beFirst(FileLock lock) {
    m_lock = std::move(lock);
    // For people who look for the one that runs; into the locked file, which must not be replaced.
    std::ofstream(lockFile()) << ::getpid() << '\n';
    m_listener = listenAt(m_socket);
    m_notifier = new QSocketNotifier(m_listener.get(), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InstanceServer::acceptAll);
    return {};
}

QString InstanceServer::unanswered() const {
    std::int64_t process = 0;
    std::ifstream(lockFile()) >> process;
    const QString which = process > 0 ? QStringLiteral(" (process %1)").arg(process) : QString();
    return QStringLiteral("Vorn is running already%1 but does not answer. End that one, then start Vorn again.")
        .arg(which);
}

void InstanceServer::acceptAll() {
    for (std::size_t i = 0; i < kMostConnections; ++i) {
        Descriptor socket = acceptFrom(m_listener);
        if (!socket.isOpen()) {
            if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
                // Still ready to be accepted, and so it would be again at once.
                m_notifier->setEnabled(false);
                QTimer::singleShot(kRestAfterFailure, m_notifier, [this] { m_notifier->setEnabled(true); });
            }
            return;
        }
        if (m_connections.size() >= kMostConnections) {
            m_connections.front()->close();
        }
        m_connections.push_back(new Connection(std::move(socket), *this));
    }
}

QString InstanceServer::handle(std::string_view line) const try {
    const InstanceRequest request = decodeInstanceRequest(line);
    return m_handler ? m_handler(request) : QStringLiteral("Vorn is still starting.");
} catch (const DecodingError& error) {
    return QString::fromUtf8(error.what());
}

}  // namespace vorn
