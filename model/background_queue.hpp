#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace vorn {

/// Jobs off the main thread, one after another, whose answers come back on it. To be made, used and destroyed on the
/// main thread.
///
/// Its thread is never joined: a reader that hangs in the kernel (a dead network drive) must not hold up anybody. So a
/// job owns all that it uses, and a process ends without waiting for threads (`std::_Exit` or `std::quick_exit`), since
/// otherwise one would run on while the program's static objects are being destroyed.
class BackgroundQueue {
public:
    enum class Priority : std::uint8_t {
        normal,
        low,  ///< gives way to everything the user is waiting for
    };
    /// To be run on the main thread; may be null.
    using Answer = std::function<void()>;
    /// Must not throw.
    using Job = std::function<Answer()>;

    explicit BackgroundQueue(Priority priority = Priority::normal);
    /// Does not wait. Jobs that have been taken on are done, their answers dropped.
    ~BackgroundQueue();
    BackgroundQueue(const BackgroundQueue&) = delete;
    BackgroundQueue& operator=(const BackgroundQueue&) = delete;

    /// False when no thread could be had: the job is then forgotten.
    [[nodiscard]] bool run(Job job);

    /// Waits until all jobs are done, without their answers. False when `patience` ended first.
    [[nodiscard]] bool waitForJobs(std::chrono::milliseconds patience);

private:
    class Receiver;
    struct Shared;

    const Priority m_priority;
    const std::shared_ptr<Shared> m_shared;
    std::unique_ptr<Receiver> m_receiver;
};

}  // namespace vorn
