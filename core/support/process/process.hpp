#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/support/descriptor.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// A request from another thread (or a signal handler) to give up a child process. One use.
class Cancellation {
public:
    Cancellation();
    ~Cancellation() = default;
    Cancellation(const Cancellation&) = delete;
    Cancellation& operator=(const Cancellation&) = delete;

    /// What a child usually gets between the request to terminate and its end by force.
    static constexpr std::chrono::milliseconds defaultGrace{2000};

    /// Async-signal-safe; may be called any number of times, but only the first call counts.
    void cancel(std::chrono::milliseconds grace = defaultGrace) noexcept;
    [[nodiscard]] bool isCancelled() const noexcept { return m_cancelled.load(); }
    /// Becomes readable on cancellation, for poll(); -1 when no descriptor could be had.
    [[nodiscard]] int descriptor() const noexcept { return m_readEnd.get(); }
    [[nodiscard]] std::chrono::milliseconds grace() const noexcept { return m_grace.load(); }

private:
    std::atomic<bool> m_cancelled{false};
    std::atomic<std::chrono::milliseconds> m_grace{defaultGrace};
    Descriptor m_readEnd;
    Descriptor m_writeEnd;
};

/// Thrown out of `runProcess` after a cancellation, once the child is gone.
class Cancelled : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return "cancelled"; }
};

/// The child could not be started; `what()` is the system's reason.
class LaunchError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct ProcessRequest {
    std::filesystem::path executable;    ///< A relative one starts from our own directory, not from the child's.
    std::vector<std::string> arguments;  ///< Without the program's own name.
    std::map<std::string, std::string> environment;  ///< The child's whole environment.
    std::filesystem::path workingDirectory;          ///< Empty for our own.
    /// What the child reads on standard input before that ends: at most 512 bytes, which every pipe takes at once.
    /// Empty for the null device.
    std::string input{};
    Seconds timeout{30};
    std::size_t outputLimit = std::size_t{8} << 20U;  ///< Bytes kept of standard output; the rest is read and dropped.
    std::size_t errorLimit = std::size_t{64} << 10U;  ///< Bytes kept of standard error.
};

struct ProcessResult {
    enum class End : std::uint8_t { exited, signalled, timedOut };
    End end = End::exited;
    int status = 0;  ///< Exit status, or the number of the signal.
    std::string standardOutput;
    std::string standardError;
};

/// Runs a child in a session of its own, drains both outputs while it runs, and returns when it has ended. After the
/// time limit or a cancellation it is asked to terminate and killed 2 seconds (or the cancellation's grace) later. What
/// it started goes with it: its session, its descendants in others, and whoever holds its outputs open. (A daemon goes
/// unnoticed when it left the session, closed the outputs and lost its parent before.) No zombie and no descriptor is
/// left behind, and the child inherits no descriptor of ours. Any thread; touches no signal handler and no other child.
/// Throws LaunchError, Cancelled.
ProcessResult runProcess(const ProcessRequest& request, const Cancellation* cancellation = nullptr);

}  // namespace vorn
