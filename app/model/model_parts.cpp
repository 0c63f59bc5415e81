#include "app/model/model_parts.hpp"

#include "app/model/background_activity.hpp"
#include "app/model/background_probe.hpp"
#include "app/model/snapshot_file.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/sources/local_activity_scanner.hpp"

namespace vorn {
namespace {

/// For another process that is writing the history; only a background thread waits.
constexpr std::chrono::milliseconds kHistoryPatience{2000};

}  // namespace

UsageModel::Parts makeModelParts() {
    return {.clock = makeSystemClock(),
            .ticker = makeTimerTicker(),
            .probe = std::make_unique<BackgroundProbe>(),
            .activity = std::make_unique<BackgroundActivity>(LocalActivityScanner::defaultRoot()),
            .snapshot = std::make_unique<SnapshotFile>(VornPaths::statusLineSnapshot()),
            .history = std::make_unique<HistoryStore>(VornPaths::history(), HistoryStore::defaultRetention,
                                                      HistoryStore::defaultHeartbeat, kHistoryPatience),
            .resetPlan = ResetPlanStore(VornPaths::resetPlan()),
            .probeRecord = ProbeRecordStore(VornPaths::probeRecord())};
}

}  // namespace vorn
