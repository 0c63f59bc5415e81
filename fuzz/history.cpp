#include <algorithm>
#include <cmath>

#include "core/data/history/history_file.hpp"
#include "core/data/history/history_line.hpp"
#include "core/data/history/history_store.hpp"
#include "core/transcripts/export_text.hpp"
#include "fuzz/fuzz_target.hpp"
#include "fuzz/reading_checks.hpp"

/// The history's file: what could be read of it survives being written, and can be judged.
namespace vorn::fuzz {
namespace {

constexpr std::chrono::milliseconds kPatience{50};

void requireRoundTrip(const RecordedReadings& readings) {
    const auto path = scratch("copy.jsonl");
    const HistoryFile copy(path, kPatience);
    writeFile(path, "torn line");
    require(copy.append(readings) && copy.read() == readings, "a history is the same after a way through its file");
    auto rewritten = readings;
    require(copy.rewrite(rewritten, kNow) && rewritten == readings && copy.read() == readings,
            "a rewrite keeps what is known");
}

/// As a program that starts on this history and takes a reading.
void requireUsable(const std::filesystem::path& path) {
    HistoryStore store(path);
    const auto samples = store.all();
    require(std::ranges::is_sorted(samples, {}, &HistorySample::observedAt), "a loaded history is in order");
    const auto current = store.newestCurrent(kNow);
    for (const UsageWindow& window : current) {
        requireSound(window);
    }
    requireAssessable(current, HistoryIndex(samples));
    const UsageWindow reading{
        .kind = WindowKind::session(), .usedPercent = 37.5, .resetsAt = kNow + Seconds{3600}, .observedAt = kNow};
    store.record({&reading, 1}, kNow);
    auto known = store.all();
    std::ranges::stable_sort(known, {},
                             &HistorySample::observedAt);  // a reading follows those of a clock that was ahead
    require(known == HistoryStore(path).all(), "memory and file hold the same");
}

}  // namespace

void checkInput(std::string_view input) {
    const auto path = scratch("history.jsonl");
    writeFile(path, input);
    const auto readings = HistoryFile(path, kPatience).read();
    const auto& samples = readings.samples();
    for (const HistorySample& sample : samples) {
        require(sample.isFinite(), "what was read can be written");
        requireUtf8(sample.kindKey);
    }
    requireUtf8(exportHistory(samples, ExportFormat::csv));
    requireUtf8(exportHistory(samples, ExportFormat::json));
    requireRoundTrip(readings);
    requireUsable(path);
}

}  // namespace vorn::fuzz
