#pragma once

#include <filesystem>
#include <memory>

#include "model/background_queue.hpp"
#include "model/model_sources.hpp"

namespace vorn {

/// Scans the transcripts on a thread that gives way to others. Needs a running event loop. A scan that hangs in the
/// kernel, as on a dead network drive, is left to itself.
class BackgroundActivity : public ActivitySource {
public:
    /// How far back replies are of interest.
    static constexpr Seconds lookback{604800};

    explicit BackgroundActivity(std::filesystem::path root);

    void scan(Instant now, std::function<void(Answer)> done) override;

private:
    struct Scanner;

    BackgroundQueue m_queue{BackgroundQueue::Priority::low};
    std::shared_ptr<Scanner> m_scanner;  ///< Shared with the running scan.
};

}  // namespace vorn
