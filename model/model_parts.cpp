#include "model/model_parts.hpp"

#include "core/data/vorn_paths.hpp"
#include "core/transcripts/local_activity_scanner.hpp"
#include "model/background_activity.hpp"
#include "model/background_probe.hpp"
#include "model/snapshot_file.hpp"

namespace vorn {
namespace {

/// For another process that is writing the history; only a background thread waits.
constexpr std::chrono::milliseconds kHistoryPatience{2000};

}  // namespace

ModelParts makeModelParts(QTimer& ticker) {
    return {.clock = makeSystemClock(),
            .ticker = makeTimerTicker(ticker),
            .probe = std::make_unique<BackgroundProbe>(),
            .activity = std::make_unique<BackgroundActivity>(LocalActivityScanner::defaultRoot()),
            .snapshot = std::make_unique<SnapshotFile>(VornPaths::statusLineSnapshot(), VornPaths::moreLimits()),
            .history = std::make_unique<HistoryStore>(VornPaths::history(), HistoryStore::defaultRetention,
                                                      HistoryStore::defaultHeartbeat, kHistoryPatience),
            .resetPlan = ResetPlanStore(VornPaths::resetPlan()),
            .probeRecord = ProbeRecordStore(VornPaths::probeRecord()),
            .outcomes = OutcomeStore(VornPaths::outcomes())};
}

}  // namespace vorn
