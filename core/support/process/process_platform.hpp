#pragma once

#include <cstdint>
#include <vector>

#include <spawn.h>
#include <sys/types.h>

#include "core/support/descriptor.hpp"

/// What running a child takes beyond POSIX; one implementation per system.
namespace vorn::process_platform {

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// Both ends are closed on exec. Both are closed already when there was none to be had; errno has the reason.
Pipe openPipe();

/// Makes the spawned child start with the descriptors 0, 1 and 2 alone. To be called after all other file actions.
void closeAllButStandard(posix_spawn_file_actions_t& actions, short& attributeFlags);

/// Becomes readable when the child ends. Closed on systems that have no such descriptor: the caller then polls.
Descriptor openExitNotice(pid_t child);

struct Entry {
    pid_t pid = 0;
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    std::uint64_t startTime =
        0;  ///< In a unit of the system's own; distinguishes processes that had the same id one after the other.
};

/// Every process that is running, zombies left out. Empty when the system does not tell.
std::vector<Entry> listProcesses();

/// The other processes that can write to the pipe of which `readEnd` is one end. Empty when the system does not tell.
std::vector<pid_t> listWriters(const Descriptor& readEnd);

}  // namespace vorn::process_platform
