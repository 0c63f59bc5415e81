#pragma once

#include <chrono>
#include <filesystem>

#include "core/data/history/recorded_readings.hpp"

namespace vorn {

/// The file behind the history, shared by every process of the user: one sample a line, in the order of recording.
///
/// Writers exclude each other with an advisory lock on a file of its own beside it ("history.jsonl.lock"): a rewrite
/// puts another file in the history's place, so a lock on the history itself would guard a file that nobody opens any
/// more. For the same reason a writer opens the history by name, anew, while it holds the lock. The lock belongs to the
/// open file and goes with its process, however that ends; and should somebody delete the lock file, the next writer
/// makes a new one, which can cost exclusion only between two writers at that very moment. Reading takes no lock: the
/// worst it can see is a line that is still being written, and that one is found again by the next rewrite.
class HistoryFile {
public:
    /// `patience`: how long a writer waits for another process that is writing.
    HistoryFile(std::filesystem::path path, std::chrono::milliseconds patience);

    /// Every line that is a sample, in the order of the file; empty when it cannot be read or is no regular file. Of an
    /// absurdly large file only the newest 256 MiB are read.
    [[nodiscard]] RecordedReadings read() const;

    /// Adds lines at the end, all or none. False when they could not be written; the file is then as it was.
    [[nodiscard]] bool append(const RecordedReadings& readings) const;

    /// Replaces the file by `readings`, to which it first adds what another process has stored meanwhile from `cutoff`
    /// on (sorting by time when there is anything). False when the file could not be replaced; it is then as it was.
    [[nodiscard]] bool rewrite(RecordedReadings& readings, Instant cutoff) const;

private:
    std::filesystem::path m_path;
    std::chrono::milliseconds m_patience;
};

}  // namespace vorn
