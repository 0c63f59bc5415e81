#include "core/data/probe_record.hpp"

#include "core/data/usage_state.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// What is remembered of asking the client, which the next program starts from.
namespace vorn::fuzz {

void checkInput(std::string_view input) {
    const auto path = scratch("probe.json");
    writeFile(path, input);
    const ProbeRecordStore store(path);
    const ProbeRecord record = store.load();
    requireUtf8(record.failure ? description(*record.failure) : std::string());
    require(record.consecutiveFailures >= 0, "failures are counted");
    for (const UsageWindow& reading : record.readings) {
        requireSound(reading);
    }
    requireAssessable(believable(record.readings, kNow), HistoryIndex());
    require(store.save(record) && store.load() == record, "a record is the same after a way through its file");
    const ProbeRecord failed = record.afterFailure(kNow, {.kind = ProbeFailure::Kind::timedOut});
    require(!mayRetryProbe(failed, Seconds{60}, kNow), "after a failure comes a pause");
    require(mayRetryProbe(failed, Seconds{60}, kNow + Seconds{60 * 16}), "and that has an end");
}

}  // namespace vorn::fuzz
