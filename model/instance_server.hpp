#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "core/data/instance_request.hpp"
#include "core/support/descriptor.hpp"
#include "core/support/file.hpp"

class QSocketNotifier;

namespace vorn {

/// Makes the first start of Vorn the only one: it holds a lock and listens, and every later one hands its request over
/// to it. Main thread only; nobody who connects can hold the thread up or fill the memory.
class InstanceServer : public QObject {
    Q_OBJECT

public:
    struct Start {
        enum class Kind : std::uint8_t {
            first,       ///< This is the one, and listens.
            handedOver,  ///< Another one has done what was requested.
            failed,      ///< Another one is running and did not do it.
        };
        Kind kind = Kind::first;
        /// For people: why it failed and what to do, or why later starts will not find this first one.
        QString problem{};
    };

    /// How long `start` waits for another one: until it listens, and then until it answers.
    struct Patience {
        std::chrono::milliseconds toListen{3000};
        std::chrono::milliseconds toAnswer{5000};
    };

    /// Does what was requested and returns why not, for people; empty when it is done.
    using Handler = std::function<QString(const InstanceRequest& request)>;

    /// `home`: Vorn's directory. Each has its own first start.
    explicit InstanceServer(std::filesystem::path home, QObject* parent = nullptr);
    ~InstanceServer() override;

    /// Becomes the first start, or hands `request` over to it. To be called once.
    [[nodiscard]] Start start(const InstanceRequest& request, Patience patience);
    [[nodiscard]] Start start(const InstanceRequest& request) { return start(request, Patience()); }
    /// Who does what later starts request; called from the event loop. Without one requests are turned down.
    void setHandler(Handler handler) { m_handler = std::move(handler); }

private:
    class Connection;

    Start beFirst(FileLock lock);
    [[nodiscard]] QString unanswered() const;
    [[nodiscard]] std::filesystem::path lockFile() const;
    void acceptAll();
    /// Does what the line requests. Returns why it was not done, for people; empty when it was.
    [[nodiscard]] QString handle(std::string_view line) const;

    std::filesystem::path m_home;
    std::filesystem::path m_socket;
    std::optional<FileLock> m_lock;
    Descriptor m_listener;
    QSocketNotifier* m_notifier = nullptr;
    std::deque<Connection*> m_connections;  ///< The oldest first; children of this.
    Handler m_handler;
};

}  // namespace vorn
