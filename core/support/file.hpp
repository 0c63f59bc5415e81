#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "core/support/descriptor.hpp"

/// Files as Vorn treats them: read whole, replaced whole, and never half-written.
namespace vorn {

/// The value of an environment variable; empty when it is unset or set to the empty text.
std::optional<std::string> environmentValue(const char* name);

/// The user's home directory without a trailing slash: `HOME`, else what the account says, else "/".
std::filesystem::path homeDirectory();

/// `path` with a leading "~" (alone or before a slash) replaced by the home directory.
std::filesystem::path expandTilde(std::string_view path);

/// The whole content of a regular file (or what a link to one points at). Empty when it is missing, unreadable, not a
/// regular file, or larger than `limit` bytes.
std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t limit = 512U << 20U);

/// `readFile` that tells why: `error` is clear when the content is there, no_such_file_or_directory for a missing file
/// alone.
std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t limit, std::error_code& error);

/// `readFile` that throws std::filesystem::filesystem_error where that is empty, with
/// std::errc::no_such_file_or_directory for a missing file alone.
std::string requireFile(const std::filesystem::path& path, std::size_t limit = 512U << 20U);

/// `readFile` before the file is replaced: empty for a missing file alone. Any other file that cannot be read may hold
/// something, and throws std::filesystem::filesystem_error.
std::optional<std::string> readToReplace(const std::filesystem::path& path, std::size_t limit = 512U << 20U);

/// Stands for the content of a file: the stamp is another one after the file was written to or replaced. Cheap to get,
/// so that a file that is looked at every few seconds is read only after a change.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t modified = 0;  ///< Nanoseconds since some fixed moment.
    std::int64_t size = 0;      ///< Bytes.
    bool operator==(const FileStamp&) const = default;
};
/// The stamp of a file, links followed. Empty when there is nothing of that name, or nothing can be told about it.
std::optional<FileStamp> fileStamp(const std::filesystem::path& path);

/// Whether `path` is a link that a stranger left in a directory that everybody may write to. Nothing of ours is written
/// through such a one, or somebody else would choose which of our files is overwritten.
bool isPlantedLink(const std::filesystem::path& path);

/// Creates `directory` and its missing parents, the new ones with mode 0700 whatever the umask. Throws
/// std::filesystem::filesystem_error.
void createPrivateDirectories(const std::filesystem::path& directory);

/// Replaces the file's content as one step: temporary file in the same directory, flush, rename. A new file gets mode
/// 0600, an existing one keeps its mode and, as far as we may set it, its owner; a symbolic link stays a link and its
/// target is replaced, unless it is a planted one. On failure throws std::filesystem::filesystem_error, and the old
/// content stands.
void replaceFile(const std::filesystem::path& path, std::string_view content);

struct Replacement {
    std::filesystem::path path;
    std::string_view content;
    std::optional<unsigned> mode{};         ///< Instead of the old file's.
    std::filesystem::path model{};          ///< Where there is no old file: whose mode and owner to take.
    bool followsLinks = true;               ///< Else a link in the file's place is itself replaced.
    std::function<bool()> isStillWanted{};  ///< Asked last, with the new content flushed; absent for "yes".
};
/// `replaceFile` with the choices of `replacement`. False when it was no longer wanted; then nothing has changed.
bool replaceFile(const Replacement& replacement);

/// `replaceFile` without waiting for the disk, for a file that is soon written again: readers see the old or the new
/// content, but after a power cut it may be empty.
void replaceFileUnflushed(const std::filesystem::path& path, std::string_view content);

/// Removes the temporary files that replacing the file left beside `path` when its process was killed. Only for a
/// caller that keeps everybody else from replacing the file meanwhile.
void removeAbandonedTemporaries(const std::filesystem::path& path);

/// An advisory lock between processes (and between objects of one process), held until destruction. The lock file
/// itself stays; when somebody deletes it, the next taker makes a new one. On a file system without locks every taker
/// gets one at once.
class FileLock {
public:
    /// Waits at most `patience`; empty when another process still holds it or the file cannot be opened.
    static std::optional<FileLock> acquire(const std::filesystem::path& path, std::chrono::milliseconds patience);
    /// `acquire` that tells why in `error`: `device_or_resource_busy` when another process holds the lock.
    static std::optional<FileLock> acquire(const std::filesystem::path& path, std::chrono::milliseconds patience,
                                           std::error_code& error);
    /// The lock to hold while `file` is replaced. It is a file of its own, named with ".lock" at the end, since a lock
    /// on `file` itself would be one on the old content. Makes the directory of both. Throws
    /// std::filesystem::filesystem_error: `device_or_resource_busy` when another process holds the lock.
    static FileLock beside(const std::filesystem::path& file, std::chrono::milliseconds patience);

    FileLock(FileLock&&) noexcept = default;
    FileLock& operator=(FileLock&&) noexcept = default;
    ~FileLock();

private:
    explicit FileLock(int descriptor) : m_descriptor(descriptor) {}
    Descriptor m_descriptor;
};

}  // namespace vorn
