#include "relay/standard_input.hpp"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "relay/pipe_size.hpp"
#include "relay/signal_ignored.hpp"

namespace vorn::relay {
namespace {

constexpr int kInput = STDIN_FILENO;
/// A thousand times what Claude Code sends, and what a pipe can be made to hold.
constexpr std::size_t kLongest = std::size_t{1} << 20U;
/// For the end of the input once there is a whole object: whoever keeps the pipe open need not have forgotten it, and
/// nobody's status line waits for him.
constexpr std::chrono::milliseconds kPatience{100};
constexpr std::size_t kChunk = std::size_t{64} << 10U;

/// Waits for input where the descriptor does not block. -1 with errno, 0 at the end.
ssize_t readSome(int descriptor, char* buffer, std::size_t size) noexcept {
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, size);
        if (count >= 0 || (errno != EINTR && errno != EAGAIN)) {
            return count;
        }
        if (errno == EAGAIN) {
            pollfd input{.fd = descriptor, .events = POLLIN, .revents = 0};
            ::poll(&input, 1, -1);
        }
    }
}

/// What is left when the descriptor takes no more.
std::string_view writeSome(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            break;
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return bytes;
}

bool isStreamSocket(int descriptor) noexcept {
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
}

/// Otherwise whoever waits for the end of one of our inherited descriptors would wait for the feeder.
void closeAllAfter(int last) noexcept {
    DIR* open = ::opendir("/dev/fd");
    if (open == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(open)) {
        const int descriptor = std::atoi(entry->d_name);
        if (descriptor > last && descriptor != ::dirfd(open)) {
            ::close(descriptor);
        }
    }
    ::closedir(open);
}

/// Whether there is something to read, or the end, before `deadline`.
bool isReadable(int descriptor, std::chrono::steady_clock::time_point deadline) noexcept {
    pollfd input{.fd = descriptor, .events = POLLIN, .revents = 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const int ready = ::poll(&input, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
        if (ready >= 0 || errno != EINTR) {
            return ready != 0;
        }
    }
}

}  // namespace

bool ObjectEnd::isPassed(std::string_view piece) noexcept {
    for (std::size_t i = 0; i < piece.size() && !m_isPassed && !m_isOther; ++i) {
        take(piece[i]);
    }
    return m_isPassed;
}

void ObjectEnd::take(char c) noexcept {
    if (m_isInText) {
        m_isInText = m_isEscaped || c != '"';
        m_isEscaped = !m_isEscaped && c == '\\';
    } else if (!m_hasBegun) {
        m_hasBegun = c == '{';
        m_isOther = !m_hasBegun && c != ' ' && c != '\t' && c != '\r' && c != '\n';
        m_depth = 1;
    } else if (c == '"') {
        m_isInText = true;
    } else if (c == '{' || c == '[') {
        ++m_depth;
    } else if (c == '}' || c == ']') {
        m_isPassed = --m_depth == 0;
    }
}

StandardInput::StandardInput() noexcept : m_kind(kindOfInput()) {
    if (m_kind == Kind::untouched) {
        return;
    }
    m_bytes.reset(new (std::nothrow) char[kLongest]);
    if (!m_bytes || (m_kind != Kind::file && !openReplacement())) {
        m_kind = Kind::untouched;
        return;
    }
    if (m_kind == Kind::file) {
        readFile();
    } else {
        readStream();
    }
}

StandardInput::Kind StandardInput::kindOfInput() noexcept {
    struct stat status {};
    if (::fstat(kInput, &status) != 0) {
        return Kind::untouched;
    }
    if (S_ISREG(status.st_mode)) {
        return Kind::file;
    }
    if (S_ISFIFO(status.st_mode)) {
        return Kind::pipe;
    }
    return S_ISSOCK(status.st_mode) && isStreamSocket(kInput) ? Kind::socket : Kind::untouched;
}

bool StandardInput::openReplacement() noexcept {
    std::array<int, 2> ends{};
    const int failed = m_kind == Kind::pipe ? ::pipe(ends.data()) : ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
    if (failed != 0) {
        return false;
    }
    m_readEnd = Descriptor(ends[0]);
    m_writeEnd = Descriptor(ends[1]);
    return ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
}

void StandardInput::readFile() noexcept {
    // Reading at positions of our own leaves the shared one where the command has to start.
    const off_t start = ::lseek(kInput, 0, SEEK_CUR);
    while (start >= 0 && m_size < kLongest && !m_ended) {
        const ssize_t count = ::pread(kInput, &m_bytes[m_size], kLongest - m_size, start + static_cast<off_t>(m_size));
        if (count < 0 && errno != EINTR) {
            return;
        }
        m_size += count > 0 ? static_cast<std::size_t>(count) : 0;
        m_ended = count == 0;
    }
}

void StandardInput::readStream() noexcept {
    ObjectEnd end;
    std::chrono::steady_clock::time_point deadline;
    while (m_size < kLongest && !m_ended && (!m_isWhole || isReadable(kInput, deadline))) {
        const ssize_t count = readSome(kInput, &m_bytes[m_size], kLongest - m_size);
        if (count < 0 && m_size == 0) {
            m_kind = Kind::untouched;  // the command shall meet the same error
            return;
        }
        const std::string_view piece(&m_bytes[m_size], count > 0 ? static_cast<std::size_t>(count) : 0);
        m_size += piece.size();
        // After an error nothing more comes; the command gets what came.
        m_ended = count <= 0;
        if (!m_isWhole && end.isPassed(piece)) {
            m_isWhole = true;
            deadline = std::chrono::steady_clock::now() + kPatience;
        }
    }
}

std::optional<std::string_view> StandardInput::whole() const {
    if (!m_ended && (!m_isWhole || m_size == kLongest)) {
        return std::nullopt;
    }
    return std::string_view(m_bytes.get(), m_size);
}

void StandardInput::handOn() noexcept {
    if (m_kind != Kind::pipe && m_kind != Kind::socket) {
        return;
    }
    const std::string_view rest = fillReplacement();
    if ((!rest.empty() || !m_ended) && !startFeeder(m_writeEnd.get(), rest)) {
        spill();
    }
    ::dup2(m_readEnd.get(), kInput);
    m_readEnd.reset();
    m_writeEnd.reset();
}

std::string_view StandardInput::fillReplacement() noexcept {
    if (m_kind == Kind::pipe && m_size > kChunk) {
        growPipe(m_writeEnd.get(), m_size);
    }
    const int flags = ::fcntl(m_writeEnd.get(), F_GETFL);
    ::fcntl(m_writeEnd.get(), F_SETFL, flags | O_NONBLOCK);
    const std::string_view rest = writeSome(m_writeEnd.get(), {m_bytes.get(), m_size});
    ::fcntl(m_writeEnd.get(), F_SETFL, flags);
    return rest;
}

bool StandardInput::startFeeder(int output, std::string_view rest) const noexcept {
    // The parent in between ends at once, so the command gets no child that it did not start.
    const pid_t between = ::fork();
    if (between == 0) {
        const pid_t feeder = ::fork();
        if (feeder == 0) {
            feed(output, rest);
        }
        ::_exit(feeder < 0 ? 1 : 0);
    }
    if (between < 0) {
        return false;
    }
    int status = 0;  // stays so where ended children are not kept for anybody
    while (::waitpid(between, &status, 0) < 0 && errno == EINTR) {
    }
    const SignalIgnored noNotice(SIGCHLD);  // blocked, it would wait for the command
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void StandardInput::feed(int output, std::string_view rest) const noexcept {
    constexpr int kOutput = STDOUT_FILENO;
    ::close(m_readEnd.get());
    ::dup2(output, kOutput);
    ::close(STDERR_FILENO);
    closeAllAfter(STDERR_FILENO);
    if (m_ended) {
        ::close(kInput);
    }
    bool goesOn = writeSome(kOutput, rest).empty() && !m_ended;
    while (goesOn) {
        std::array<pollfd, 2> ends{pollfd{.fd = kInput, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = kOutput, .events = 0, .revents = 0}};
        ::poll(ends.data(), ends.size(), -1);
        if (ends[1].revents != 0) {
            break;  // nobody reads any more
        }
        const ssize_t count = readSome(kInput, m_bytes.get(), kLongest);
        goesOn = count > 0 && writeSome(kOutput, {m_bytes.get(), static_cast<std::size_t>(count)}).empty();
    }
    ::_exit(0);
}

void StandardInput::spill() noexcept {
    const SignalIgnored noLimitSignal(SIGXFSZ);
    std::FILE* file = std::tmpfile();
    if (file == nullptr) {
        return;
    }
    m_readEnd = Descriptor(::fcntl(::fileno(file), F_DUPFD_CLOEXEC, 0));
    std::fclose(file);
    writeSome(m_readEnd.get(), {m_bytes.get(), m_size});
    while (!m_ended) {
        const ssize_t count = readSome(kInput, m_bytes.get(), kLongest);
        m_ended = count <= 0 || !writeSome(m_readEnd.get(), {m_bytes.get(), static_cast<std::size_t>(count)}).empty();
    }
    ::lseek(m_readEnd.get(), 0, SEEK_SET);
}

void StandardInput::drain() noexcept {
    if (m_kind != Kind::pipe && m_kind != Kind::socket) {
        return;
    }
    if (!m_ended && m_isWhole) {
        const Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        if (nowhere.isOpen() && startFeeder(nowhere.get(), {})) {
            return;
        }
    }
    while (!m_ended && readSome(kInput, m_bytes.get(), kLongest) > 0) {
    }
}

}  // namespace vorn::relay
