#include <charconv>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/support/process/process_platform.hpp"

namespace vorn::process_platform {
namespace fs = std::filesystem;
namespace {

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::string readStat(pid_t pid) {
    const Descriptor file(::open(("/proc/" + std::to_string(pid) + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
    std::string line(1024, '\0');  // more than 52 numbers and a name of 16 bytes
    const ssize_t count = file.isOpen() ? ::read(file.get(), line.data(), line.size()) : 0;
    line.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return line;
}

/// `line` is "PID (NAME) STATE PPID PGRP SESSION …"; the name may hold blanks and brackets itself.
std::optional<Entry> parseStat(pid_t pid, std::string_view line) {
    constexpr std::size_t kState = 0;
    constexpr std::size_t kStartTime = 19;
    const std::size_t nameEnd = line.rfind(") ");
    if (nameEnd == std::string_view::npos) {
        return std::nullopt;
    }
    line.remove_prefix(nameEnd + 2);
    std::vector<std::string_view> fields;
    while (!line.empty() && fields.size() <= kStartTime) {
        const std::size_t end = std::min(line.find(' '), line.size());
        fields.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    if (fields.size() <= kStartTime || fields[kState] == "Z" || fields[kState] == "X") {
        return std::nullopt;
    }
    const auto parent = parseNumber<pid_t>(fields[1]);
    const auto group = parseNumber<pid_t>(fields[2]);
    const auto session = parseNumber<pid_t>(fields[3]);
    const auto startTime = parseNumber<std::uint64_t>(fields[kStartTime]);
    if (!parent || !group || !session || !startTime) {
        return std::nullopt;
    }
    return Entry{.pid = pid, .parent = *parent, .group = *group, .session = *session, .startTime = *startTime};
}

/// Calls `visit` with the file name of everything in `directory`, which may vanish meanwhile.
template <typename Visit>
void forEachName(const fs::path& directory, Visit visit) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
        visit(entry->path().filename().string());
    }
}

template <typename Visit>
void forEachProcess(Visit visit) {
    forEachName("/proc", [&](const std::string& name) {
        if (const auto pid = parseNumber<pid_t>(name)) {
            visit(*pid);
        }
    });
}

bool canWriteTo(pid_t pid, const struct stat& pipe) {
    bool found = false;
    const std::string directory = "/proc/" + std::to_string(pid) + "/fd";
    forEachName(directory, [&](const std::string& name) {
        const std::string link = directory + "/" + name;
        struct stat target {};
        struct stat itself {};
        // The link's own mode says how the descriptor was opened. A process that another of our threads is just
        // starting still has a copy of our reading end, which must not count.
        found = found || (::stat(link.c_str(), &target) == 0 && S_ISFIFO(target.st_mode) &&
                          target.st_ino == pipe.st_ino && target.st_dev == pipe.st_dev &&
                          ::lstat(link.c_str(), &itself) == 0 && (itself.st_mode & S_IWUSR) != 0);
    });
    return found;
}

}  // namespace

Pipe openPipe() {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return {};
    }
    return {.readEnd = Descriptor(ends[0]), .writeEnd = Descriptor(ends[1])};
}

void closeAllButStandard(posix_spawn_file_actions_t& actions, short& /*attributeFlags*/) {
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

Descriptor openExitNotice(pid_t child) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));  // older than its wrapper in glibc
}

std::vector<Entry> listProcesses() {
    std::vector<Entry> entries;
    forEachProcess([&](pid_t pid) {
        if (const auto entry = parseStat(pid, readStat(pid))) {
            entries.push_back(*entry);
        }
    });
    return entries;
}

std::vector<pid_t> listWriters(const Descriptor& readEnd) {
    std::vector<pid_t> writers;
    struct stat pipe {};
    if (!readEnd.isOpen() || ::fstat(readEnd.get(), &pipe) != 0) {
        return writers;
    }
    forEachProcess([&](pid_t pid) {
        if (pid != ::getpid() && canWriteTo(pid, pipe)) {
            writers.push_back(pid);
        }
    });
    return writers;
}

}  // namespace vorn::process_platform
