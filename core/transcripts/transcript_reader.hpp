#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "core/transcripts/transcript_files.hpp"

namespace vorn {

/// How far a transcript has been read. A line counts only with its line feed, so the rest after the last one is read
/// again once it is complete; what has been searched of it by then is not searched again.
struct ReadPosition {
    std::uint64_t lineStart = 0;  ///< Byte offset after the last line feed.
    std::uint64_t searched = 0;   ///< There is no line feed from `lineStart` to here,
    bool isMarkerSeen = false;    ///< and `kAssistantMarker` only if this says so.
    bool operator==(const ReadPosition&) const = default;
};

/// Finds the lines of a transcript that hold `kAssistantMarker`. Whatever the size of files and lines, it needs one
/// buffer, and a second one while a marked line does not fit the first. Not for two threads at once.
class TranscriptReader {
public:
    static constexpr std::size_t kBufferSize = std::size_t{1} << 20U;    ///< Fits a core's cache; measured.
    static constexpr std::size_t kLongestLine = std::size_t{16} << 20U;  ///< Longer ones are skipped.

    /// Gets a line without its line feed; `TranscriptLineParser::kPadding` bytes after it may be read.
    using LineHandler = std::function<void(std::string_view line)>;
    /// Called with how many bytes were read since the last call.
    using Progress = std::function<void(std::size_t bytes)>;

    TranscriptReader();

    /// Continues at `position` up to the size the file had when it was opened, and moves `position` there.
    void read(const TranscriptFile& file, ReadPosition& position, const LineHandler& handle, const Progress& progress);

private:
    class Pass;
    std::unique_ptr<char[]> m_buffer;
};

}  // namespace vorn
