#include "core/transcripts/transcript_files.hpp"

#include <cerrno>
#include <memory>
#include <optional>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorn {
namespace {

constexpr std::string_view kExtension = ".jsonl";
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

enum class Type : std::uint8_t { regular, directory, other };

struct Entry {
    Type type = Type::other;
    FileStatus status;
};

Type typeOf(mode_t mode) {
    if (S_ISREG(mode)) {
        return Type::regular;
    }
    return S_ISDIR(mode) ? Type::directory : Type::other;
}

/// Of `name` in an open directory, or of the directory's descriptor itself when `name` is empty.
std::optional<Entry> entryStatus(int directory, const char* name) {
#if defined(__linux__)
    // Only statx knows when a file was born.
    const auto nanoseconds = [](const statx_timestamp& t) {
        return t.tv_sec * kNanosecondsPerSecond + t.tv_nsec;
    };
    struct statx s {};
    constexpr unsigned kWanted = STATX_TYPE | STATX_INO | STATX_MTIME | STATX_SIZE | STATX_BTIME;
    constexpr int kFlags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
    if (::statx(directory, name, kFlags, kWanted, &s) != 0) {
        return std::nullopt;
    }
    return Entry{.type = typeOf(s.stx_mode),
                 .status = {.identity = {.device = std::uint64_t{s.stx_dev_major} << 32U | s.stx_dev_minor,
                                         .number = s.stx_ino,
                                         .born = (s.stx_mask & STATX_BTIME) != 0 ? nanoseconds(s.stx_btime) : 0},
                            .modified = nanoseconds(s.stx_mtime),
                            .size = s.stx_size}};
#else
    const auto nanoseconds = [](const timespec& t) {
        return t.tv_sec * kNanosecondsPerSecond + t.tv_nsec;
    };
    struct stat s {};
    const int failed = *name == '\0' ? ::fstat(directory, &s) : ::fstatat(directory, name, &s, AT_SYMLINK_NOFOLLOW);
    if (failed != 0) {
        return std::nullopt;
    }
    return Entry{.type = typeOf(s.st_mode),
                 .status = {.identity = {.device = static_cast<std::uint64_t>(s.st_dev),
                                         .number = static_cast<std::uint64_t>(s.st_ino),
                                         .born = nanoseconds(s.st_birthtimespec)},
                            .modified = nanoseconds(s.st_mtimespec),
                            .size = static_cast<std::uint64_t>(s.st_size)}};
#endif
}

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

Directory openDirectory(const std::string& path, bool mayBeLink) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (mayBeLink ? 0 : O_NOFOLLOW));
    if (descriptor < 0) {
        return nullptr;
    }
    Directory directory(::fdopendir(descriptor));
    if (!directory) {
        ::close(descriptor);
    }
    return directory;
}

class Walk {
public:
    Walk(std::string root, Instant modifiedAfter, const TranscriptVisitor& visit)
        : m_modifiedAfter(modifiedAfter), m_visit(visit) {
        m_pending.push_back(std::move(root));
    }

    void run() {
        for (bool isRoot = true; !m_pending.empty(); isRoot = false) {
            m_path = std::move(m_pending.back());
            m_pending.pop_back();
            // One descriptor at a time, however deep the tree is.
            if (const Directory directory = openDirectory(m_path, isRoot)) {
                read(directory.get());
            }
        }
    }

private:
    void read(DIR* directory) {
        m_path += '/';
        m_directoryLength = m_path.size();
        while (const dirent* const entry = ::readdir(directory)) {
            if (entry->d_name[0] != '.') {
                look(::dirfd(directory), *entry);
            }
        }
    }

    void look(int directory, const dirent& entry) {
        const std::string_view name = entry.d_name;
        const bool isNamedRight = name.size() > kExtension.size() && name.ends_with(kExtension);
        Type type = entry.d_type == DT_DIR ? Type::directory : Type::other;
        std::optional<Entry> found;
        // Some file systems do not tell the type in the listing.
        if (entry.d_type == DT_UNKNOWN || (entry.d_type == DT_REG && isNamedRight)) {
            found = entryStatus(directory, entry.d_name);
            type = found ? found->type : Type::other;
        }
        m_path.resize(m_directoryLength);
        if (type == Type::directory) {
            m_pending.push_back(m_path);
            m_pending.back() += name;
        } else if (type == Type::regular && isNamedRight &&
                   Instant{std::chrono::nanoseconds{found->status.modified}} >= m_modifiedAfter) {
            m_path += name;
            m_visit(m_path, found->status);
        }
    }

    Instant m_modifiedAfter;
    const TranscriptVisitor& m_visit;
    std::vector<std::string> m_pending;  ///< Directories still to be read.
    std::string m_path;                  ///< Of the entry looked at; its memory is used again and again.
    std::size_t m_directoryLength = 0;   ///< How much of `m_path` is the directory and its slash.
};

}  // namespace

void visitTranscripts(const std::filesystem::path& root, Instant modifiedAfter, const TranscriptVisitor& visit) {
    Walk(root.native(), modifiedAfter, visit).run();
}

TranscriptFile::TranscriptFile(const std::string& path) {
    Descriptor opened(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    const auto entry = opened.isOpen() ? entryStatus(opened.get(), "") : std::nullopt;
    if (entry && entry->type == Type::regular) {
        m_descriptor = std::move(opened);
        m_status = entry->status;
    }
}

std::size_t TranscriptFile::read(char* buffer, std::size_t length, std::uint64_t offset) const {
    std::size_t filled = 0;
    while (filled < length) {
        const auto got =
            ::pread(m_descriptor.get(), buffer + filled, length - filled, static_cast<off_t>(offset + filled));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

}  // namespace vorn
