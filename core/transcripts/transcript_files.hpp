#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "core/support/descriptor.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// What the file system says of a file.
struct FileStatus {
    /// Changes when another file takes the name, even one that was given the number of a deleted file.
    struct Identity {
        std::uint64_t device = 0;
        std::uint64_t number = 0;
        std::int64_t born = 0;  ///< Nanoseconds since 1970; 0 where the file system does not know.
        bool operator==(const Identity&) const = default;
    };
    Identity identity;
    std::int64_t modified = 0;  ///< Nanoseconds since 1970.
    std::uint64_t size = 0;     ///< Bytes.
};

/// Called with the path (good for the length of the call) and the status of each transcript.
using TranscriptVisitor = std::function<void(const std::string& path, const FileStatus& status)>;

/// Visits the transcripts below `root`, at any depth, that were modified at or after `modifiedAfter`: regular files
/// named *.jsonl. Names that begin with a full stop are skipped, and symbolic links below the root (which may be one
/// itself) are not followed. What cannot be read counts as empty.
void visitTranscripts(const std::filesystem::path& root, Instant modifiedAfter, const TranscriptVisitor& visit);

/// A file opened for reading.
class TranscriptFile {
public:
    /// Follows no link and waits for no pipe. Not open when the file cannot be read or is not a regular one.
    explicit TranscriptFile(const std::string& path);

    [[nodiscard]] bool isOpen() const { return m_descriptor.isOpen(); }
    /// As it was when the file was opened.
    [[nodiscard]] const FileStatus& status() const { return m_status; }
    /// Fills `buffer` with up to `length` bytes from `offset` on. Fewer at the end of the file or after an error.
    std::size_t read(char* buffer, std::size_t length, std::uint64_t offset) const;

private:
    Descriptor m_descriptor;
    FileStatus m_status;
};

}  // namespace vorn
