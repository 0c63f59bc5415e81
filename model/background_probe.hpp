#pragma once

#include <memory>

#include "model/background_queue.hpp"
#include "model/model_sources.hpp"

namespace vorn {

class Cancellation;

/// Asks the installed client on a thread of its own. Needs a running event loop.
class BackgroundProbe : public ProbeSource {
public:
    BackgroundProbe() = default;
    /// A client that runs is asked to terminate and soon killed, but not waited for: for that there is `shutDown`.
    ~BackgroundProbe() override;

    void run(const ClientQuestion& question, std::function<void(Answer)> done) override;
    void shutDown(std::chrono::milliseconds patience) override;

private:
    void cancel();

    BackgroundQueue m_queue;
    std::shared_ptr<Cancellation> m_cancellation;  ///< Of the last run.
};

}  // namespace vorn
