#pragma once

#include <filesystem>
#include <optional>

/// Where Vorn keeps its files. Computed on every call, so a changed environment or override takes effect at once.
namespace vorn::VornPaths {

/// Replaces the root for every path below; process-wide and thread-safe. Empty restores the default.
void setRootOverride(std::optional<std::filesystem::path> root);
std::optional<std::filesystem::path> rootOverride();

/// The override; else `VORN_HOME`, with a leading "~" expanded; else "Vorn" in the per-user data
/// directory.
std::filesystem::path root();
/// Creates the root and its missing parents, for the user alone. Throws std::filesystem::filesystem_error.
void ensureRoot();

std::filesystem::path history();             ///< history.jsonl
std::filesystem::path integrationRecord();   ///< integration.json
std::filesystem::path connectionNote();      ///< connection.json: what Vorn remembers of connecting
std::filesystem::path statusLineSnapshot();  ///< statusline.json
std::filesystem::path statusLineTurns();     ///< statusline-turns.txt: when the last turns of sessions were
std::filesystem::path moreLimits();          ///< statusline-limits.json: what the status line told beside the snapshot
std::filesystem::path resetPlan();           ///< reset-plan.json
std::filesystem::path probeRecord();         ///< probe.json: when the client was last asked, and how it failed
std::filesystem::path probingLock();         ///< probing.lock: held by the program that asks the client
std::filesystem::path clientMemory();        ///< client.json: in which form the client can be asked
std::filesystem::path sharedChoices();       ///< choices.json: what was chosen in the application and holds for vornctl
std::filesystem::path outcomes();            ///< outcomes.jsonl: what happened to each limit, for a year
std::filesystem::path breakdown();           ///< insights.json: what the client printed last below its limits
std::filesystem::path bridgeExecutable();    ///< bin/vorn-bridge: the copy of the relay that Claude Code runs
/// The application's settings, Vorn/Vorn.conf. Absent where the platform keeps them elsewhere, and where another
/// directory was chosen: it shares them with the usual one.
std::optional<std::filesystem::path> settings();
/// The empty directory in which `claude` runs, so that it reads no project. Created on every call; a failure shows
/// when the process is started.
std::filesystem::path probeWorkingDirectory();

}  // namespace vorn::VornPaths
