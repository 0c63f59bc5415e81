#include "model/background_queue.hpp"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "core/support/thread_priority.hpp"

namespace vorn {

/// What the thread and the queue know of each other; outlives both.
struct BackgroundQueue::Shared {
    std::mutex mutex;  ///< Guards everything here.
    std::condition_variable idle;
    std::deque<Job> jobs;
    std::deque<Answer> answers;
    bool isRunning = false;       ///< There is a thread.
    QObject* receiver = nullptr;  ///< Null once the queue is gone.

    /// The thread's life: until nothing is left to do.
    static void work(const std::shared_ptr<Shared>& shared, Priority priority);
    void deliver(Answer answer);
};

/// Lives on the main thread, where events for it arrive.
class BackgroundQueue::Receiver : public QObject {
public:
    explicit Receiver(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

protected:
    void customEvent(QEvent* event) override {
        static_cast<void>(event);
        // An answer may destroy the queue and with it this.
        const auto shared = m_shared;
        for (;;) {
            Answer answer;
            {
                const std::lock_guard lock(shared->mutex);
                if (shared->receiver == nullptr || shared->answers.empty()) {
                    return;
                }
                answer = std::move(shared->answers.front());
                shared->answers.pop_front();
            }
            answer();
        }
    }

private:
    std::shared_ptr<Shared> m_shared;
};

void BackgroundQueue::Shared::work(const std::shared_ptr<Shared>& shared, Priority priority) {
    if (priority == Priority::low) {
        lowerThreadPriority();
    }
    std::unique_lock lock(shared->mutex);
    while (!shared->jobs.empty()) {
        Job job = std::move(shared->jobs.front());
        shared->jobs.pop_front();
        lock.unlock();
        Answer answer = job();
        job = {};
        lock.lock();
        shared->deliver(std::move(answer));
    }
    shared->isRunning = false;
    shared->idle.notify_all();
}

void BackgroundQueue::Shared::deliver(Answer answer) {
    if (answer == nullptr || receiver == nullptr) {
        return;
    }
    answers.push_back(std::move(answer));
    // Under the lock, so that the receiver cannot go meanwhile.
    QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
}

BackgroundQueue::BackgroundQueue(Priority priority)
    : m_priority(priority), m_shared(std::make_shared<Shared>()), m_receiver(std::make_unique<Receiver>(m_shared)) {
    m_shared->receiver = m_receiver.get();
}

BackgroundQueue::~BackgroundQueue() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->receiver = nullptr;
    m_shared->answers.clear();
}

bool BackgroundQueue::run(Job job) {
    const std::lock_guard lock(m_shared->mutex);
    if (!m_shared->isRunning) {
        try {
            std::thread(&Shared::work, m_shared, m_priority).detach();
        } catch (const std::system_error&) {
            return false;
        }
        m_shared->isRunning = true;
    }
    m_shared->jobs.push_back(std::move(job));
    return true;
}

bool BackgroundQueue::waitForJobs(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_shared->mutex);
    return m_shared->idle.wait_for(lock, patience, [this] { return !m_shared->isRunning; });
}

}  // namespace vorn
