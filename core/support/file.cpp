#include "core/support/file.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/support/account.hpp"
#include "core/support/file_platform.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

/// A name that can be told from every copy that is kept ("settings.json.vorn-backup"), so that leftovers may be
/// removed.
constexpr std::string_view kTemporarySuffix = ".vorn-new-";
constexpr std::string_view kTemporaryPattern = "XXXXXX";
constexpr mode_t kPrivateFile = 0600;
constexpr mode_t kPrivateDirectory = 0700;

[[noreturn]] void fail(const char* what, const fs::path& path) {
    throw fs::filesystem_error(what, path, std::error_code(errno, std::generic_category()));
}

void writeAll(int descriptor, std::string_view content, const fs::path& path) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            fail("cannot write", path);
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
}

fs::path directoryOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// Where a write to `path` lands: the end of a chain of links, which need not exist.
fs::path writeTarget(fs::path path) {
    constexpr int kLongestChain = 40;  // as deep as the kernel itself follows
    for (int i = 0; i < kLongestChain; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(path, error))) {
            return path;
        }
        if (isPlantedLink(path)) {
            throw fs::filesystem_error("a link of somebody else", path,
                                       std::make_error_code(std::errc::permission_denied));
        }
        const fs::path next = fs::read_symlink(path);
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    throw fs::filesystem_error("too many links", path, std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

void syncDirectory(const fs::path& directory) {
    const Descriptor descriptor(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        ::fsync(descriptor.get());
    }
}

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code readInto(std::string& content, const fs::path& path, std::size_t limit) {
    // Without O_NONBLOCK a FIFO in the file's place would hang the caller in open().
    const Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) {
        return lastError();
    }
    if (!S_ISREG(status.st_mode)) {
        return std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory : std::errc::invalid_argument);
    }
    if (static_cast<std::size_t>(status.st_size) > limit) {
        return std::make_error_code(std::errc::file_too_large);
    }
    content.reserve(static_cast<std::size_t>(status.st_size));
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return lastError();
        }
        if (count == 0) {
            return {};
        }
        if (content.size() + static_cast<std::size_t>(count) > limit) {
            return std::make_error_code(std::errc::file_too_large);
        }
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

/// As far as we may: a user replaces only what is his own, root also what is another's.
void keepOwner(int descriptor, const struct stat& old) {
    struct stat fresh {};
    if (::fstat(descriptor, &fresh) != 0 || (fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid)) {
        return;
    }
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int ignored = ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid);
    }
}

void setMode(int descriptor, unsigned mode, const fs::path& path) {
    if (::fchmod(descriptor, static_cast<mode_t>(mode)) != 0) {
        fail("cannot set the mode", path);
    }
}

void renameOver(const char* temporary, const fs::path& target) {
    if (::rename(temporary, target.c_str()) != 0) {
        fail("cannot replace", target);
    }
}

/// Writes the new content to a temporary file beside `target`, with the mode and the owner that it is to have, and has
/// `replace(descriptor, name)` put it in the target's place and say whether it did. When it did not, or anything
/// throws, the temporary file is gone.
template <typename Replace>
bool replaceThroughTemporary(const Replacement& replacement, const fs::path& target, Replace replace) {
    struct stat old {};
    const bool exists = ::lstat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode) && (replacement.followsLinks || !S_ISLNK(old.st_mode))) {
        throw fs::filesystem_error("not a regular file", target, std::make_error_code(std::errc::invalid_argument));
    }
    std::string temporary = target.string();
    temporary.append(kTemporarySuffix).append(kTemporaryPattern);
    Descriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!descriptor.isOpen()) {
        fail("cannot create temporary file", target);
    }
    try {
        const bool hasModel =
            exists ? S_ISREG(old.st_mode) : !replacement.model.empty() && ::stat(replacement.model.c_str(), &old) == 0;
        if (hasModel) {
            keepOwner(descriptor.get(), old);
        }
        // Set even where it is new: what the umask left of it may be too little to read it again.
        setMode(descriptor.get(), replacement.mode.value_or(hasModel ? old.st_mode & 07777U : kPrivateFile), target);
        writeAll(descriptor.get(), replacement.content, target);
        if (replace(descriptor, temporary.c_str())) {
            return true;
        }
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
    ::unlink(temporary.c_str());
    return false;
}

/// Gives a directory that we have just made what the umask took from its owner.
void repairMode(const fs::path& directory) {
    struct stat status {};
    if (::lstat(directory.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
        (status.st_mode & kPrivateDirectory) != kPrivateDirectory) {
        [[maybe_unused]] const int ignored = ::chmod(directory.c_str(), kPrivateDirectory);  // shows in the next step
    }
}

/// The same for a file of ours: the next one to open it would be refused.
void repairMode(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && (status.st_mode & kPrivateFile) != kPrivateFile) {
        [[maybe_unused]] const int ignored = ::fchmod(descriptor, kPrivateFile);
    }
}

/// Whether `path` still leads to the file behind the descriptor.
bool isNamed(const fs::path& path, int descriptor) {
    struct stat byName {};
    struct stat held {};
    return ::stat(path.c_str(), &byName) == 0 && ::fstat(descriptor, &held) == 0 && byName.st_dev == held.st_dev &&
           byName.st_ino == held.st_ino;
}

}  // namespace

std::optional<std::string> environmentValue(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return value;
}

fs::path homeDirectory() {
    std::string home;
    if (const auto set = environmentValue("HOME")) {
        home = *set;
    } else {
        home = accountHome();
    }
    while (home.size() > 1 && home.back() == '/') {
        home.pop_back();
    }
    return home.empty() ? fs::path("/") : fs::path(home);
}

fs::path expandTilde(std::string_view path) {
    if (path == "~") {
        return homeDirectory();
    }
    if (path.starts_with("~/")) {
        path.remove_prefix(2);
        return homeDirectory() / fs::path(path).relative_path();
    }
    return path;
}

bool isPlantedLink(const fs::path& path) {
    struct stat link {};
    struct stat directory {};
    return ::lstat(path.c_str(), &link) == 0 && S_ISLNK(link.st_mode) && link.st_uid != ::geteuid() &&
           ::stat(directoryOf(path).c_str(), &directory) == 0 && (directory.st_mode & S_IWOTH) != 0 &&
           link.st_uid != directory.st_uid;
}

std::optional<std::string> readFile(const fs::path& path, std::size_t limit) {
    std::string content;
    return readInto(content, path, limit) ? std::nullopt : std::optional(std::move(content));
}

std::optional<std::string> readFile(const fs::path& path, std::size_t limit, std::error_code& error) {
    std::string content;
    error = readInto(content, path, limit);
    return error ? std::nullopt : std::optional(std::move(content));
}

std::string requireFile(const fs::path& path, std::size_t limit) {
    std::string content;
    if (const std::error_code error = readInto(content, path, limit)) {
        throw fs::filesystem_error("cannot read", path, error);
    }
    return content;
}

std::optional<std::string> readToReplace(const fs::path& path, std::size_t limit) try {
    return requireFile(path, limit);
} catch (const fs::filesystem_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) {
        throw;
    }
    return std::nullopt;
}

std::optional<FileStamp> fileStamp(const fs::path& path) {
    struct stat status {};
    std::error_code unreadable;
    // The system's own record has the fractions of a second under a name that differs between systems.
    const auto modified = fs::last_write_time(path, unreadable);
    if (unreadable || ::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const auto age = std::chrono::duration_cast<std::chrono::nanoseconds>(modified.time_since_epoch());
    return FileStamp{.device = static_cast<std::uint64_t>(status.st_dev),
                     .number = static_cast<std::uint64_t>(status.st_ino),
                     .modified = static_cast<std::int64_t>(age.count()),
                     .size = static_cast<std::int64_t>(status.st_size)};
}

void createPrivateDirectories(const fs::path& directory) {
    std::error_code error;
    if (fs::is_directory(directory, error) || directory.empty()) {
        return;
    }
    createPrivateDirectories(directory.parent_path() == directory ? fs::path() : directory.parent_path());
    if (::mkdir(directory.c_str(), kPrivateDirectory) == 0) {
        repairMode(directory);
    } else if (errno != EEXIST) {
        fail("cannot create directory", directory);
    }
    if (!fs::is_directory(directory, error)) {
        throw fs::filesystem_error("not a directory", directory, std::make_error_code(std::errc::not_a_directory));
    }
}

void replaceFile(const fs::path& path, std::string_view content) {
    replaceFile(Replacement{.path = path, .content = content});
}

bool replaceFile(const Replacement& replacement) {
    const fs::path target = replacement.followsLinks ? writeTarget(replacement.path) : replacement.path;
    const bool isReplaced =
        replaceThroughTemporary(replacement, target, [&](Descriptor& descriptor, const char* temporary) {
            if (::fsync(descriptor.get()) != 0) {
                fail("cannot flush", target);
            }
            // A program that somebody holds open for writing cannot be started.
            descriptor.reset();
            if (replacement.isStillWanted && !replacement.isStillWanted()) {
                return false;
            }
            renameOver(temporary, target);
            return true;
        });
    if (isReplaced) {
        syncDirectory(directoryOf(target));
    }
    return isReplaced;
}

void replaceFileUnflushed(const fs::path& path, std::string_view content) {
    const fs::path target = writeTarget(path);
    const Replacement replacement{.path = path, .content = content};
    replaceThroughTemporary(replacement, target, [&target](Descriptor& /*descriptor*/, const char* temporary) {
        // Replacing by rename makes some file systems flush the new content first, which takes a hundred times longer
        // than everything else here. Two names that change places do not.
        if (file_platform::exchangeNames(temporary, target.c_str())) {
            ::unlink(temporary);
        } else {
            renameOver(temporary, target);
        }
        return true;
    });
}

void removeAbandonedTemporaries(const fs::path& path) try {
    const fs::path target = writeTarget(path);
    const std::string prefix = target.filename().string() + std::string(kTemporarySuffix);
    const std::size_t length = prefix.size() + kTemporaryPattern.size();
    for (const fs::directory_entry& entry : fs::directory_iterator(directoryOf(target))) {
        const std::string name = entry.path().filename().string();
        std::error_code ignored;
        if (name.size() == length && name.starts_with(prefix) && fs::is_regular_file(entry.symlink_status(ignored))) {
            fs::remove(entry.path(), ignored);
        }
    }
} catch (const fs::filesystem_error&) {
    // Nothing depends on it, and the next call tries again.
}

std::optional<FileLock> FileLock::acquire(const fs::path& path, std::chrono::milliseconds patience) {
    std::error_code ignored;
    return acquire(path, patience, ignored);
}

std::optional<FileLock> FileLock::acquire(const fs::path& path, std::chrono::milliseconds patience,
                                          std::error_code& error) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        // Opened anew for every try: whoever deletes the lock file must not leave us waiting at one that nobody else
        // will ever come to.
        FileLock lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kPrivateFile));
        if (!lock.m_descriptor.isOpen()) {
            error = lastError();
            return std::nullopt;
        }
        repairMode(lock.m_descriptor.get());
        const bool granted = ::flock(lock.m_descriptor.get(), LOCK_EX | LOCK_NB) == 0;
        const bool unsupported = !granted && errno != EWOULDBLOCK && errno != EINTR;
        if (unsupported || (granted && isNamed(path, lock.m_descriptor.get()))) {
            error.clear();
            return lock;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            error = std::make_error_code(std::errc::device_or_resource_busy);
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
}

FileLock FileLock::beside(const fs::path& file, std::chrono::milliseconds patience) {
    createPrivateDirectories(file.parent_path());
    fs::path path = file;
    path += ".lock";
    std::error_code error;
    auto lock = acquire(path, patience, error);
    if (!lock) {
        throw fs::filesystem_error("cannot lock", path, error);
    }
    return *std::move(lock);
}

FileLock::~FileLock() {
    if (m_descriptor.isOpen()) {
        // A child between fork and exec shares the lock; closing our end alone would not release it.
        ::flock(m_descriptor.get(), LOCK_UN);
    }
}

}  // namespace vorn
