#include "core/transcripts/transcript_reader.hpp"

#include <algorithm>
#include <cstring>
#include <mutex>

#include "core/transcripts/marker_search.hpp"
#include "core/transcripts/transcript_line.hpp"

namespace vorn {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// A marker may begin in one bufferful and end in the next: so much of the former is kept in front of the latter.
constexpr std::size_t kOverlap = kAssistantMarker.text.size() - 1;

/// Index of the last line feed in `text`. Lines may be long and a search byte by byte from the end slow, so it goes
/// back block by block.
std::size_t findLastLineFeed(std::string_view text) {
    constexpr std::size_t kBlock = 512;
    while (!text.empty()) {
        const std::size_t start = text.size() - std::min(kBlock, text.size());
        const std::string_view block = text.substr(start);
        if (block.find('\n') != kNone) {
            return start + block.rfind('\n');
        }
        text.remove_suffix(block.size());
    }
    return kNone;
}

}  // namespace

/// One reading of one file.
class TranscriptReader::Pass {
public:
    Pass(const TranscriptFile& file, ReadPosition& position, const LineHandler& handle, char* buffer)
        : m_file(file), m_position(position), m_handle(handle), m_buffer(buffer) {}

    void run(const Progress& progress) {
        const std::uint64_t size = m_file.status().size;
        // A reading that was broken off by an exception may have left the line ahead of the search.
        std::uint64_t next = std::max(m_position.searched, m_position.lineStart);
        std::size_t kept = 0;
        if (!m_position.isMarkerSeen) {
            // Look again at what may be the beginning of a marker.
            next -= std::min<std::uint64_t>(kOverlap, next - m_position.lineStart);
        }
        while (next < size) {
            const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBufferSize, size - next));
            const std::size_t got = m_file.read(m_buffer + kOverlap, wanted, next);
            m_text = {m_buffer + kOverlap - kept, kept + got};
            m_offset = next - kept;
            m_isLast = got < wanted || next + got >= size;
            next = search();
            progress(got);
            if (got < wanted) {
                return;  // truncated meanwhile, or unreadable: the next scan sees
            }
            kept = 0;
            if (next == m_offset + m_text.size() && !m_position.isMarkerSeen) {
                kept = static_cast<std::size_t>(std::min<std::uint64_t>(kOverlap, next - m_position.lineStart));
                std::memmove(m_buffer + kOverlap - kept, m_text.data() + m_text.size() - kept, kept);
            }
        }
    }

private:
    /// Searches the buffer and hands out the marked lines in it. Returns the offset to read on from.
    std::uint64_t search() {
        std::size_t at = m_position.isMarkerSeen ? finishMarkedLine() : 0;
        while (at < m_text.size()) {
            const std::size_t hit = findMarker(kAssistantMarker, m_text.substr(at));
            if (hit == kNone) {
                break;
            }
            startLineBefore(at, at + hit);
            const std::size_t end = m_text.find('\n', at + hit + kOverlap);
            if (end == kNone) {
                if (m_position.lineStart > m_offset && !m_isLast) {
                    m_position.searched = m_position.lineStart;
                    return m_position.lineStart;  // The buffer may hold the whole line if it begins with it.
                }
                m_position.isMarkerSeen = true;
                return reachEnd();
            }
            handOut(end);
            at = end + 1;
        }
        startLineBefore(at, m_text.size());
        return reachEnd();
    }

    /// The end of a line whose beginning was in an earlier bufferful. Returns the index behind it.
    std::size_t finishMarkedLine() {
        const std::size_t end = m_text.find('\n');
        if (end == kNone) {
            return m_text.size();
        }
        m_position.isMarkerSeen = false;
        handOut(end);
        return end + 1;
    }

    /// Moves `lineStart` to the line that holds the index `to`; there is no marker from index `from` to there.
    void startLineBefore(std::size_t from, std::size_t to) {
        from = std::min(from, to);
        const std::size_t lineFeed = findLastLineFeed(m_text.substr(from, to - from));
        if (lineFeed != kNone) {
            m_position.lineStart = m_offset + from + lineFeed + 1;
        }
    }

    std::uint64_t reachEnd() {
        m_position.searched = m_offset + m_text.size();
        return m_position.searched;
    }

    /// The line from `lineStart` to the line feed at index `end`; the next line starts there.
    void handOut(std::size_t end) {
        const std::uint64_t lineEnd = m_offset + end;
        if (m_position.lineStart >= m_offset) {
            const auto start = static_cast<std::size_t>(m_position.lineStart - m_offset);
            m_handle(m_text.substr(start, end - start));
        } else if (lineEnd - m_position.lineStart <= kLongestLine) {
            handOutLong(static_cast<std::size_t>(lineEnd - m_position.lineStart));
        }
        m_position.lineStart = lineEnd + 1;
    }

    void handOutLong(std::size_t length) {
        // However many threads read, only one of them holds such a line.
        static std::mutex oneAtATime;
        const std::lock_guard lock(oneAtATime);
        const std::unique_ptr<char[]> line(new char[length + TranscriptLineParser::kPadding]);
        if (m_file.read(line.get(), length, m_position.lineStart) == length) {
            m_handle({line.get(), length});
        }
    }

    const TranscriptFile& m_file;
    ReadPosition& m_position;
    const LineHandler& m_handle;
    char* const m_buffer;
    std::string_view m_text;     ///< What of the buffer is to be searched.
    std::uint64_t m_offset = 0;  ///< Where in the file that begins.
    bool m_isLast = false;       ///< Nothing follows in the file.
};

// Not initialised: a short read then touches few pages.
TranscriptReader::TranscriptReader() : m_buffer(new char[kOverlap + kBufferSize + TranscriptLineParser::kPadding]) {}

void TranscriptReader::read(const TranscriptFile& file, ReadPosition& position, const LineHandler& handle,
                            const Progress& progress) {
    Pass(file, position, handle, m_buffer.get()).run(progress);
}

}  // namespace vorn
