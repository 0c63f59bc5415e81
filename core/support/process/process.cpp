#include "core/support/process/process.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/support/descriptor.hpp"
#include "core/support/process/process_platform.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// For output that a pipeline behind the child is still passing on when the child itself has ended.
constexpr auto kDrainGrace = 200ms;
/// For killed processes to be gone. Only one that hangs in the kernel (a dead network drive) takes longer.
constexpr auto kKillPatience = 1s;
/// Between two looks where the system cannot wake us.
constexpr auto kPollInterval = 20ms;
constexpr Seconds kLongestTimeout = std::chrono::hours{24};

std::string systemReason(int error) {
    return std::generic_category().message(error);
}

void makeNonBlocking(int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

/// Out of the way of the descriptors 0 to 2, which the child gets rearranged: ours may have been closed.
Descriptor aboveStandard(Descriptor descriptor) {
    if (descriptor.get() > STDERR_FILENO) {
        return descriptor;
    }
    Descriptor moved(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!moved.isOpen()) {
        throw LaunchError(systemReason(errno));
    }
    return moved;
}

/// The reading end of a pipe that holds the whole input, so that nobody waits for whoever reads it; closed for none.
Descriptor openInput(const std::string& content) {
    constexpr std::size_t kMost = 512;
    if (content.empty()) {
        return {};
    }
    process_platform::Pipe pipe = process_platform::openPipe();
    if (!pipe.readEnd.isOpen()) {
        throw LaunchError(systemReason(errno));
    }
    if (content.size() > kMost || ::write(pipe.writeEnd.get(), content.data(), content.size()) < 0) {
        throw LaunchError("the input does not fit into a pipe");
    }
    return aboveStandard(std::move(pipe.readEnd));
}

/// One of the child's outputs: our end of its pipe and what is kept of what came through.
class Output {
public:
    explicit Output(std::size_t limit) : m_limit(limit) {}

    /// Returns the child's end.
    Descriptor open() {
        process_platform::Pipe pipe = process_platform::openPipe();
        if (!pipe.readEnd.isOpen()) {
            throw LaunchError(systemReason(errno));
        }
        makeNonBlocking(pipe.readEnd.get());
        m_readEnd = std::move(pipe.readEnd);
        return aboveStandard(std::move(pipe.writeEnd));
    }

    [[nodiscard]] const Descriptor& readEnd() const { return m_readEnd; }
    [[nodiscard]] std::string take() { return std::move(m_text); }

    /// Reads what is there, but not without end from a child that writes faster than we read.
    void drain() {
        constexpr int kMostReads = 32;
        std::array<char, 65536> buffer;  // what a pipe holds
        for (int i = 0; m_readEnd.isOpen() && i < kMostReads; ++i) {
            const ssize_t count = ::read(m_readEnd.get(), buffer.data(), buffer.size());
            if (count > 0) {
                m_text.append(buffer.data(), std::min(static_cast<std::size_t>(count), m_limit - m_text.size()));
            } else if (count < 0 && errno == EAGAIN) {
                return;
            } else if (count == 0 || errno != EINTR) {
                m_readEnd.reset();
            }
        }
    }

private:
    Descriptor m_readEnd;
    std::string m_text;
    std::size_t m_limit;
};

class FileActions {
public:
    FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    posix_spawn_file_actions_t& get() { return m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class SpawnAttributes {
public:
    SpawnAttributes() { ::posix_spawnattr_init(&m_attributes); }
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&m_attributes); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    posix_spawnattr_t& get() { return m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// What to tell when `executable` could not be started in `directory`; the system's number fits either of them.
std::string launchFailure(int error, const fs::path& executable, const fs::path& directory) {
    std::error_code unreadable;
    if (!directory.empty() && (!fs::is_directory(directory, unreadable) || ::access(directory.c_str(), X_OK) != 0)) {
        return "cannot work in " + directory.string() + ": " + systemReason(error);
    }
    return executable.string() + ": " + systemReason(error);
}

pid_t spawn(const ProcessRequest& request, const Descriptor& output, const Descriptor& error) {
    // The child looks its executable up after it has changed the directory.
    std::error_code unknown;
    const fs::path executable = fs::absolute(request.executable, unknown);
    if (unknown) {
        throw LaunchError(request.executable.string() + ": " + unknown.message());
    }
    std::vector<std::string> arguments{executable.string()};
    arguments.insert(arguments.end(), request.arguments.begin(), request.arguments.end());
    std::vector<std::string> environment;
    for (const auto& [name, value] : request.environment) {
        environment.emplace_back(name).append("=").append(value);
    }

    SpawnAttributes attributes;
    sigset_t signals;
    sigemptyset(&signals);  // a macro on macOS, as is the next one
    ::posix_spawnattr_setsigmask(&attributes.get(), &signals);
    sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes.get(), &signals);
    short flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;

    const Descriptor input = openInput(request.input);
    FileActions actions;
    if (input.isOpen()) {
        ::posix_spawn_file_actions_adddup2(&actions.get(), input.get(), STDIN_FILENO);
    } else {
        ::posix_spawn_file_actions_addopen(&actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    ::posix_spawn_file_actions_adddup2(&actions.get(), output.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions.get(), error.get(), STDERR_FILENO);
    if (!request.workingDirectory.empty()) {
        ::posix_spawn_file_actions_addchdir_np(&actions.get(), request.workingDirectory.c_str());
    }
    process_platform::closeAllButStandard(actions.get(), flags);
    ::posix_spawnattr_setflags(&attributes.get(), flags);

    pid_t pid = -1;
    const int failure = ::posix_spawn(&pid, executable.c_str(), &actions.get(), &attributes.get(),
                                      pointersTo(arguments).data(), pointersTo(environment).data());
    if (failure != 0) {
        throw LaunchError(launchFailure(failure, executable, request.workingDirectory));
    }
    return pid;
}

/// A child with everything it started. It leads a session and a process group, both with its own id, and its id stays
/// taken until it is collected: only then may another process get it. Neither is touched after that.
class Child {
public:
    Child(const ProcessRequest& request, const Descriptor& output, const Descriptor& error)
        : m_pid(spawn(request, output, error)), m_exitNotice(process_platform::openExitNotice(m_pid)) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (!m_isCollected) {
            ::kill(-m_pid, SIGKILL);
            collect();
        }
    }

    [[nodiscard]] const Descriptor& exitNotice() const { return m_exitNotice; }

    /// True when it has ended, or nobody can tell any more.
    [[nodiscard]] bool hasEnded() const {
        siginfo_t info{};
        const int outcome = ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT);
        return outcome == 0 ? info.si_pid == m_pid : errno == ECHILD;
    }

    void terminate(const std::array<Output, 2>& outputs) {
        const auto members = findMembers(outputs);
        ::kill(-m_pid, SIGTERM);
        ::kill(-m_pid, SIGCONT);  // a stopped process does not hear the other one
        for (const auto& member : members) {
            if (member.group != m_pid) {  // the group has got it
                ::kill(member.pid, SIGTERM);
            }
        }
    }

    /// Returns when all of it is gone, or cannot be got rid of.
    void killAll(const std::array<Output, 2>& outputs) {
        const auto deadline = Clock::now() + kKillPatience;
        for (;;) {
            ::kill(-m_pid, SIGKILL);
            const auto members = findMembers(outputs);
            for (const auto& member : members) {
                ::kill(member.pid, SIGKILL);
            }
            if ((members.empty() && hasEnded()) || Clock::now() >= deadline) {
                return;
            }
            std::this_thread::sleep_for(2ms);
        }
    }

    /// Takes the status of an ended child, as waitpid() gives it, and leaves no zombie. Empty when there is none to be
    /// had: the process ignores SIGCHLD, somebody else collected the child, or it cannot be killed.
    std::optional<int> collect() {
        m_isCollected = true;
        int status = 0;
        const int option = hasEnded() ? 0 : WNOHANG;
        pid_t outcome = 0;
        do {
            outcome = ::waitpid(m_pid, &status, option);
        } while (outcome < 0 && errno == EINTR);
        if (outcome == 0) {
            collectLater();
        }
        return outcome == m_pid ? std::optional(status) : std::nullopt;
    }

private:
    void collectLater() const noexcept {
        try {
            std::thread([pid = m_pid] { ::waitpid(pid, nullptr, 0); }).detach();
        } catch (const std::system_error&) {
            // Then a zombie is what remains.
        }
    }

    /// All that runs and belongs to the child: its session and group, descendants that have left both, and whoever can
    /// still write to our pipes. Descendants are known by their parent, which they lose when it ends: hence those
    /// found earlier are remembered.
    std::vector<process_platform::Entry> findMembers(const std::array<Output, 2>& outputs) {
        std::set<pid_t> family{m_pid};
        for (const Output& output : outputs) {
            for (const pid_t writer : process_platform::listWriters(output.readEnd())) {
                family.insert(writer);
            }
        }
        const auto entries = process_platform::listProcesses();
        const auto isMember = [&](const process_platform::Entry& entry) {
            const auto isSame = [&](const auto& old) {
                return old.pid == entry.pid && old.startTime == entry.startTime;
            };
            return entry.group == m_pid || entry.session == m_pid || family.count(entry.parent) != 0 ||
                   std::ranges::any_of(m_members, isSame);
        };
        for (std::size_t before = 0; before != family.size();) {
            before = family.size();
            for (const auto& entry : entries) {
                if (isMember(entry)) {
                    family.insert(entry.pid);
                }
            }
        }
        m_members.clear();
        std::ranges::copy_if(entries, std::back_inserter(m_members),
                             [&](const auto& entry) { return family.count(entry.pid) != 0; });
        return m_members;
    }

    pid_t m_pid;
    Descriptor m_exitNotice;
    std::vector<process_platform::Entry> m_members;  ///< as last seen
    bool m_isCollected = false;
};

/// One child from its start to its end.
class Run {
public:
    explicit Run(const ProcessRequest& request, const Cancellation* cancellation)
        : m_outputs{Output(request.outputLimit), Output(request.errorLimit)},
          m_cancellation(cancellation),
          m_deadline(Clock::now() + std::chrono::duration_cast<Clock::duration>(bounded(request.timeout))),
          m_child(start(request)) {}

    ProcessResult finish() {
        const Wake wake = watch(m_deadline, m_cancellation);
        if (wake == Wake::childEnded) {
            drainRest();
        } else {
            m_child.terminate(m_outputs);
            const auto grace = wake == Wake::cancelled ? m_cancellation->grace() : Cancellation::defaultGrace;
            watch(Clock::now() + grace, nullptr);
        }
        m_child.killAll(m_outputs);
        drain();
        const auto status = m_child.collect();
        if (wake == Wake::cancelled) {
            throw Cancelled();
        }
        if (wake == Wake::deadline) {
            return result(ProcessResult::End::timedOut, 0);
        }
        if (!status) {
            throw LaunchError("the exit status was lost (is SIGCHLD ignored?)");
        }
        return WIFSIGNALED(*status) ? result(ProcessResult::End::signalled, WTERMSIG(*status))
                                    : result(ProcessResult::End::exited, WEXITSTATUS(*status));
    }

private:
    enum class Wake : std::uint8_t { childEnded, deadline, cancelled };

    static Seconds bounded(Seconds timeout) {
        return timeout > Seconds{0} ? std::min(timeout, kLongestTimeout)
                                    : Seconds{0};  // not-a-number is no time at all
    }

    Child start(const ProcessRequest& request) {
        const Descriptor output = m_outputs[0].open();
        const Descriptor error = m_outputs[1].open();
        return Child(request, output, error);
    }

    /// Drains both outputs until the child ends, `deadline` passes, or the cancellation comes.
    Wake watch(Clock::time_point deadline, const Cancellation* cancellation) {
        for (;;) {
            if (m_child.hasEnded()) {
                return Wake::childEnded;
            }
            if (cancellation != nullptr && cancellation->isCancelled()) {
                return Wake::cancelled;
            }
            if (Clock::now() >= deadline) {
                return Wake::deadline;
            }
            const bool wakesUs =
                m_child.exitNotice().isOpen() && (cancellation == nullptr || cancellation->descriptor() >= 0);
            sleepUntil(wakesUs ? deadline : std::min<Clock::time_point>(deadline, Clock::now() + kPollInterval),
                       m_child.exitNotice().get(), cancellation == nullptr ? -1 : cancellation->descriptor());
            drain();
        }
    }

    /// Reads on after the child's end, until nobody holds the pipes any more or patience ends.
    void drainRest() {
        const auto deadline = Clock::now() + kDrainGrace;
        drain();
        while ((m_outputs[0].readEnd().isOpen() || m_outputs[1].readEnd().isOpen()) && Clock::now() < deadline) {
            sleepUntil(deadline, -1, -1);
            drain();
        }
    }

    /// Returns early when there is output or one of the others becomes readable (-1: none), and now and then without
    /// a reason.
    void sleepUntil(Clock::time_point deadline, int exitNotice, int cancellation) const {
        std::array<pollfd, 4> watched{{{.fd = m_outputs[0].readEnd().get(), .events = POLLIN, .revents = 0},
                                       {.fd = m_outputs[1].readEnd().get(), .events = POLLIN, .revents = 0},
                                       {.fd = exitNotice, .events = POLLIN, .revents = 0},
                                       {.fd = cancellation, .events = POLLIN, .revents = 0}}};
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        const auto patience = std::clamp(left, milliseconds{0}, milliseconds{60s});
        if (::poll(watched.data(), watched.size(), static_cast<int>(patience.count())) < 0 && errno != EINTR) {
            std::this_thread::sleep_for(kPollInterval);  // short of memory
        }
    }

    void drain() {
        for (Output& output : m_outputs) {
            output.drain();
        }
    }

    ProcessResult result(ProcessResult::End end, int status) {
        return {
            .end = end, .status = status, .standardOutput = m_outputs[0].take(), .standardError = m_outputs[1].take()};
    }

    std::array<Output, 2> m_outputs;  ///< standard output, standard error
    const Cancellation* m_cancellation;
    Clock::time_point m_deadline;
    Child m_child;
};

}  // namespace

Cancellation::Cancellation() {
    process_platform::Pipe pipe = process_platform::openPipe();
    if (pipe.readEnd.isOpen()) {
        makeNonBlocking(pipe.writeEnd.get());
        m_readEnd = std::move(pipe.readEnd);
        m_writeEnd = std::move(pipe.writeEnd);
    }
}

void Cancellation::cancel(std::chrono::milliseconds grace) noexcept {
    static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<milliseconds>::is_always_lock_free,
                  "a signal handler must not wait for a lock");
    const int callersError = errno;
    if (!m_cancelled) {
        m_grace = grace;  // before the other one, which lets it be read
    }
    if (!m_cancelled.exchange(true) && m_writeEnd.isOpen()) {
        // Cannot fail: the pipe is empty and its other end open.
        [[maybe_unused]] const ssize_t written = ::write(m_writeEnd.get(), "", 1);
    }
    errno = callersError;
}

ProcessResult runProcess(const ProcessRequest& request, const Cancellation* cancellation) {
    if (cancellation != nullptr && cancellation->isCancelled()) {
        throw Cancelled();
    }
    return Run(request, cancellation).finish();
}

}  // namespace vorn
