#include <array>
#include <cstddef>

#include <fcntl.h>
#include <libproc.h>
#include <sys/proc.h>
#include <unistd.h>

#include "core/support/process/process_platform.hpp"

namespace vorn::process_platform {

Pipe openPipe() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0) {
        return {};
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    return {.readEnd = Descriptor(ends[0]), .writeEnd = Descriptor(ends[1])};
}

void closeAllButStandard(posix_spawn_file_actions_t& /*actions*/, short& attributeFlags) {
    attributeFlags = static_cast<short>(attributeFlags | POSIX_SPAWN_CLOEXEC_DEFAULT);
}

Descriptor openExitNotice(pid_t /*child*/) {
    return {};
}

std::vector<Entry> listProcesses() {
    constexpr std::size_t kSpare = 64;  // for what starts between the two calls
    const int estimate = ::proc_listallpids(nullptr, 0);
    std::vector<pid_t> pids(estimate > 0 ? static_cast<std::size_t>(estimate) + kSpare : 0);
    const int count = ::proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pid_t)));
    pids.resize(count > 0 ? static_cast<std::size_t>(count) : 0);

    std::vector<Entry> entries;
    for (const pid_t pid : pids) {
        proc_bsdinfo info{};
        if (::proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) == static_cast<int>(sizeof info) &&
            info.pbi_status != SZOMB) {
            entries.push_back({.pid = pid,
                               .parent = static_cast<pid_t>(info.pbi_ppid),
                               .group = static_cast<pid_t>(info.pbi_pgid),
                               .session = ::getsid(pid),
                               .startTime = info.pbi_start_tvsec * 1000000 + info.pbi_start_tvusec});
        }
    }
    return entries;
}

std::vector<pid_t> listWriters(const Descriptor& /*readEnd*/) {
    return {};
}

}  // namespace vorn::process_platform
