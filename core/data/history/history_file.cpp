#include "core/data/history/history_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/data/history/history_line.hpp"
#include "core/support/descriptor.hpp"
#include "core/support/file.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10U;        // bytes read at once; a longer line is no sample
constexpr off_t kLargestRead = off_t{256} << 20U;              // bytes; eight busy days are under 4 MiB
constexpr std::size_t kTypicalLine = 64;                       // bytes
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;  // a FIFO in the file's place must not hang open()

/// The size of a regular file in bytes, -1 for anything else.
off_t regularSize(const Descriptor& file) {
    struct stat status {};
    const bool isRegular = file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? status.st_size : -1;
}

ssize_t readAt(int file, char* buffer, std::size_t count, off_t offset) {
    ssize_t got = 0;
    do {
        got = ::pread(file, buffer, count, offset);
    } while (got < 0 && errno == EINTR);
    return got;
}

/// Decodes the lines of a file block by block, so that memory holds the samples and not the file.
class LineScan {
public:
    explicit LineScan(RecordedReadings& readings) : m_readings(readings), m_buffer(kBlock + m_decoder.padding) {}

    /// False when the file could not be read to its end.
    bool run(int file, off_t size) {
        off_t offset = std::max<off_t>(0, size - kLargestRead);
        m_isMidLine = offset > 0;
        ssize_t got = 0;
        while ((got = readAt(file, m_buffer.data() + m_held, kBlock - m_held, offset)) > 0) {
            offset += got;
            m_held += static_cast<std::size_t>(got);
            takeLines();
        }
        take({m_buffer.data(), m_held});
        return got == 0;
    }

private:
    void takeLines() {
        const char* start = m_buffer.data();
        const char* const end = start + m_held;
        while (const void* found = std::memchr(start, '\n', static_cast<std::size_t>(end - start))) {
            const char* lineFeed = static_cast<const char*>(found);
            take({start, static_cast<std::size_t>(lineFeed - start)});
            start = lineFeed + 1;
        }
        m_held = static_cast<std::size_t>(end - start);
        std::memmove(m_buffer.data(), start, m_held);
        if (m_held == kBlock) {
            m_held = 0;
            m_isMidLine = true;
        }
    }

    void take(std::string_view line) {
        if (std::exchange(m_isMidLine, false) || line.empty()) {
            return;
        }
        if (auto decoded = m_decoder.decode(line)) {
            m_readings.add(std::move(decoded->sample), decoded->source);
        }
    }

    RecordedReadings& m_readings;
    HistoryLineDecoder m_decoder;
    std::vector<char> m_buffer;
    std::size_t m_held = 0;    ///< Bytes of an unfinished line at the front of the buffer.
    bool m_isMidLine = false;  ///< The beginning of the current line was not kept.
};

struct Content {
    RecordedReadings readings;
    bool isWhole = true;  ///< Else a part of the file could not be read.
};

Content readContent(int file, off_t size) {
    Content content;
    content.readings.reserve(static_cast<std::size_t>(std::min(size, kLargestRead)) / kTypicalLine);
    content.isWhole = LineScan(content.readings).run(file, size);
    return content;
}

std::string encodeLines(const RecordedReadings& readings) {
    std::string lines;
    lines.reserve(readings.size() * kTypicalLine);
    for (std::size_t i = 0; i < readings.size(); ++i) {
        appendHistoryLine(lines, readings.samples()[i], readings.sources()[i]);
    }
    return lines;
}

/// One write at the end of the file, or none: what a full disk left of it is taken back. Nothing is flushed to the
/// disk, since the caller may be drawing a window; a power failure can cost the last seconds.
bool appendWhole(int file, off_t size, std::string lines) {
    char last = '\n';
    if (size > 0 && readAt(file, &last, 1, size - 1) != 1) {
        return false;
    }
    if (last != '\n') {
        // Somebody was stopped in the middle of a line. It costs itself, never its successor.
        lines.insert(lines.begin(), '\n');
    }
    ssize_t written = 0;
    do {
        written = ::write(file, lines.data(), lines.size());
    } while (written < 0 && errno == EINTR);
    if (std::cmp_equal(written, lines.size())) {
        return true;
    }
    // Should even this fail, the torn line stays, and the next append starts a new one.
    [[maybe_unused]] const int ignored = written > 0 ? ::ftruncate(file, size) : 0;
    return false;
}

bool replaceQuietly(const fs::path& path, std::string_view content) try {
    replaceFile(path, content);
    return true;
} catch (const fs::filesystem_error&) {
    return false;
}

bool isBefore(const HistorySample* one, const HistorySample* other) {
    return std::tie(one->observedAt, one->kindKey, one->usedPercent, one->resetsAt) <
           std::tie(other->observedAt, other->kindKey, other->usedPercent, other->resetsAt);
}

/// What `stored` has and `known` has not, in the order of `stored`. Where both have a sample, the origin that is known
/// counts: another version may have written the line anew without it.
RecordedReadings foreignReadings(const RecordedReadings& stored, const RecordedReadings& known) {
    std::vector<const HistorySample*> sorted;
    sorted.reserve(known.size());
    std::ranges::transform(known.samples(), std::back_inserter(sorted), [](const auto& sample) { return &sample; });
    std::ranges::sort(sorted, isBefore);
    RecordedReadings foreign;
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (!std::ranges::binary_search(sorted, &stored.samples()[i], isBefore)) {
            foreign.add(stored.samples()[i], stored.sources()[i]);
        }
    }
    return foreign;
}

void mergeStored(RecordedReadings& readings, RecordedReadings stored, Instant cutoff) {
    stored.eraseBefore(cutoff);
    const RecordedReadings foreign = foreignReadings(stored, readings);
    if (!foreign.isEmpty()) {
        readings.add(foreign);
        readings.sortByTime();
    }
}

/// Empty when another process writes for too long, or nothing can be written there at all.
std::optional<FileLock> lockQuietly(const fs::path& path, std::chrono::milliseconds patience) try {
    return FileLock::beside(path, patience);
} catch (const fs::filesystem_error&) {
    return std::nullopt;
}

}  // namespace

HistoryFile::HistoryFile(fs::path path, std::chrono::milliseconds patience)
    : m_path(std::move(path)), m_patience(patience) {}

RecordedReadings HistoryFile::read() const {
    const Descriptor file(::open(m_path.c_str(), O_RDONLY | kOpenFlags));
    const off_t size = regularSize(file);
    return size < 0 ? RecordedReadings{} : readContent(file.get(), size).readings;
}

bool HistoryFile::append(const RecordedReadings& readings) const {
    const auto lock = lockQuietly(m_path, m_patience);
    if (!lock || isPlantedLink(m_path)) {
        return false;
    }
    const Descriptor file(::open(m_path.c_str(), O_RDWR | O_APPEND | kOpenFlags));
    if (!file.isOpen() && errno == ENOENT) {
        return replaceQuietly(m_path, encodeLines(readings));
    }
    const off_t size = regularSize(file);
    return size >= 0 && appendWhole(file.get(), size, encodeLines(readings));
}

bool HistoryFile::rewrite(RecordedReadings& readings, Instant cutoff) const {
    const auto lock = lockQuietly(m_path, m_patience);
    if (!lock) {
        return false;
    }
    // Opened for writing as well: a file that the user made read-only is not replaced behind their back, and one that
    // cannot be read may hold lines of another process.
    const Descriptor file(::open(m_path.c_str(), O_RDWR | kOpenFlags));
    if (file.isOpen() || errno != ENOENT) {
        const off_t size = regularSize(file);
        Content stored = size < 0 ? Content{.readings = {}, .isWhole = false} : readContent(file.get(), size);
        if (!stored.isWhole) {
            return false;
        }
        mergeStored(readings, std::move(stored.readings), cutoff);
    }
    removeAbandonedTemporaries(m_path);
    return replaceQuietly(m_path, encodeLines(readings));
}

}  // namespace vorn
