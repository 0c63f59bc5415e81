#include "core/support/local_socket.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "core/support/file.hpp"
#include "core/support/stable_hash.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kWaiting = 16;  ///< Who may wait for being accepted.
constexpr std::chrono::milliseconds kPoll{10};

#ifdef MSG_NOSIGNAL
constexpr int kSendFlags = MSG_NOSIGNAL;
#else
constexpr int kSendFlags = 0;  // the socket itself is told, in `prepare`
#endif

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// The same text for all spellings of a path.
std::string canonicalText(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::weakly_canonical(fs::absolute(path, error), error);
    if (error) {
        result = path.lexically_normal();
    }
    std::string text = result.string();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

/// In the order of preference.
std::vector<fs::path> directories() {
    std::vector<fs::path> found;
    const auto addIfAbsolute = [&found](const std::optional<std::string>& base, const std::string& name) {
        if (base && base->starts_with('/')) {
            found.push_back(fs::path(*base) / name);
        }
    };
    const std::string temporary = fmt::format("vorn-{}", ::geteuid());
    addIfAbsolute(environmentValue("XDG_RUNTIME_DIR"), "vorn");
    addIfAbsolute(environmentValue("TMPDIR"), temporary);
    addIfAbsolute("/tmp", temporary);
    return found;
}

/// Not somebody else's, no link to somebody else's, and nobody else can have put anything into it.
bool isOurs(const fs::path& directory) {
    struct stat status {};
    return ::lstat(directory.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & 022U) == 0;
}

bool makeOurs(const fs::path& directory) {
    return (::mkdir(directory.c_str(), 0700) == 0 || errno == EEXIST) && isOurs(directory) &&
           ::chmod(directory.c_str(), 0700) == 0;
}

template <typename IsUsable>
std::optional<fs::path> firstPlace(const fs::path& home, IsUsable isUsable) {
    const std::string name = fmt::format("{:016x}.socket", stableHash(canonicalText(home)));
    for (const fs::path& directory : directories()) {
        fs::path socket = directory / name;
        if (socket.native().size() < sizeof(sockaddr_un::sun_path) && isUsable(directory)) {
            return socket;
        }
    }
    return std::nullopt;
}

Descriptor prepare(Descriptor socket) {
    const int flags = socket.isOpen() ? ::fcntl(socket.get(), F_GETFL) : -1;
    if (flags < 0 || ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC) != 0 ||
        ::fcntl(socket.get(), F_SETFL, flags | O_NONBLOCK) != 0) {
        return {};
    }
#ifdef SO_NOSIGPIPE
    const int on = 1;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    return socket;
}

Descriptor newSocket() {
#ifdef SOCK_CLOEXEC
    // At once, since another thread may be starting a program.
    return prepare(Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)));
#else
    return prepare(Descriptor(::socket(AF_UNIX, SOCK_STREAM, 0)));
#endif
}

/// Calls `action(address, length)`; ENAMETOOLONG for a path that is no address.
template <typename Action>
int withAddress(const fs::path& path, Action action) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string& text = path.native();
    if (text.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
    return action(reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(sizeof address));
}

/// Waits until the socket is ready for `events`; false when that takes too long.
bool waitFor(const Descriptor& socket, short events, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left <= 0ms) {
            return false;
        }
        pollfd descriptor{.fd = socket.get(), .events = events, .revents = 0};
        const int ready = ::poll(&descriptor, 1, static_cast<int>(std::min<std::int64_t>(left.count(), 60000)));
        if (ready > 0) {
            return true;
        }
        if (ready < 0 && errno != EINTR) {
            return false;
        }
    }
}

bool connectTo(const Descriptor& socket, const fs::path& path, Clock::time_point deadline) {
    for (;;) {
        const int result = withAddress(
            path, [&](const sockaddr* address, socklen_t length) { return ::connect(socket.get(), address, length); });
        if (result == 0 || errno == EISCONN) {
            return true;
        }
        // Too many wait already, or the system takes its time.
        const bool mayComeYet = errno == EAGAIN || errno == EINTR || errno == EINPROGRESS || errno == EALREADY;
        if (!mayComeYet || Clock::now() >= deadline) {
            return false;
        }
        ::poll(nullptr, 0, static_cast<int>(kPoll.count()));
    }
}

bool sendAll(const Descriptor& socket, std::string_view bytes, Clock::time_point deadline) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket.get(), bytes.data(), bytes.size(), kSendFlags);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR && (errno != EAGAIN || !waitFor(socket, POLLOUT, deadline))) {
            return false;
        }
    }
    return true;
}

/// Up to the line break, which has to come.
std::optional<std::string> receiveLine(const Descriptor& socket, Clock::time_point deadline) {
    std::string received;
    std::array<char, 4096> buffer{};
    while (received.size() <= kLongestRequest) {
        const ssize_t count = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
        if (count > 0) {
            received.append(buffer.data(), static_cast<std::size_t>(count));
            if (const auto end = received.find('\n'); end != std::string::npos) {
                received.resize(end);
                return received;
            }
        } else if (count == 0 || (errno != EINTR && (errno != EAGAIN || !waitFor(socket, POLLIN, deadline)))) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<fs::path> findLocalSocket(const fs::path& home) {
    return firstPlace(home, isOurs);
}

fs::path makeLocalSocketPlace(const fs::path& home) {
    if (auto place = firstPlace(home, makeOurs)) {
        return *std::move(place);
    }
    throw fs::filesystem_error("no private directory for a socket", directories().front(),
                               std::make_error_code(std::errc::permission_denied));
}

std::optional<std::string> sendRequest(const fs::path& socket, std::string_view line,
                                       std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    const Descriptor connection = newSocket();
    if (!connection.isOpen() || !connectTo(connection, socket, deadline) ||
        !sendAll(connection, std::string(line) + "\n", deadline)) {
        return std::nullopt;
    }
    return receiveLine(connection, deadline);
}

Descriptor listenAt(const fs::path& socket) {
    Descriptor listener = newSocket();
    if (!listener.isOpen()) {
        fail("cannot make a socket");
    }
    ::unlink(socket.c_str());
    const int bound = withAddress(
        socket, [&](const sockaddr* address, socklen_t length) { return ::bind(listener.get(), address, length); });
    if (bound != 0 || ::listen(listener.get(), kWaiting) != 0) {
        fail("cannot listen");
    }
    return listener;
}

Descriptor acceptFrom(const Descriptor& listener) {
#ifdef SOCK_CLOEXEC
    return prepare(Descriptor(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC)));
#else
    return prepare(Descriptor(::accept(listener.get(), nullptr, nullptr)));
#endif
}

void answer(const Descriptor& connection, std::string_view line) {
    sendAll(connection, std::string(line) + "\n", Clock::now());
}

}  // namespace vorn
