#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/data/activity/activity_event.hpp"
#include "core/data/refused_turn.hpp"
#include "core/transcripts/event_store.hpp"
#include "core/transcripts/transcript_files.hpp"
#include "core/transcripts/transcript_reader.hpp"

namespace vorn {

/// Reads the replies out of Claude Code's transcripts, and the refusals. Each scan reads only what was appended since
/// the last one. Usable from any thread, one scan at a time; a large scan uses further threads, which inherit the
/// priority of the calling one. Files that cannot be read and lines that are damaged yield nothing and are not
/// reported.
class LocalActivityScanner {
public:
    /// Called now and then, on the calling thread, with how far a scan has come. Must not call the scanner.
    using Progress = std::function<void(std::uint64_t bytesDone, std::uint64_t bytesTotal)>;

    /// "projects" in Claude Code's configuration directory.
    static std::filesystem::path defaultRoot();

    /// Keeps replies of the last `lookback`, and reads no file that was not modified within it.
    LocalActivityScanner(std::filesystem::path root, Seconds lookback);

    /// All kept replies, by time. By value, since the caller makes a summary of them and the scanner keeps its own in
    /// half the memory.
    std::vector<ActivityEvent> scan(Instant now, const Progress& progress = {});

    /// The two halves of `scan`, for callers that poll: reads what is new and tells whether anything kept changed.
    bool update(Instant now, const Progress& progress = {});
    [[nodiscard]] std::vector<ActivityEvent> events();
    /// The turns that the service refused, by time, each once; kept as long as replies.
    [[nodiscard]] std::vector<RefusedTurn> refusals();

private:
    /// How far a file has been read, and which file that was.
    struct Cursor {
        FileStatus::Identity identity;
        ReadPosition position{};
        std::int64_t modified = 0;  ///< The file's modification time then, nanoseconds since 1970.
    };
    struct Job;
    class Reading;

    std::vector<Job> findJobs(Instant cutoff);

    const std::filesystem::path m_root;
    const Seconds m_lookback;
    std::mutex m_lock;  ///< Guards what follows; held for a whole scan.
    std::unordered_map<std::string, Cursor> m_cursors;
    EventStore m_store;
    std::vector<RefusedTurn> m_refusals;  ///< By time, each once; while a scan runs, the found ones behind them.
    std::uint32_t m_filesRead = 0;        ///< Numbers the origins of replies, so that a later scan's come later.
};

}  // namespace vorn
