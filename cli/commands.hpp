#pragma once

namespace CLI {
class App;
}

/// The subcommands of vornctl. Each adds itself to the command line; when it is the one that was called, its exit
/// status is left in `exitStatus`.
namespace vorn::cli {

/// Exit statuses, the same for every command.
enum ExitStatus : int {
    kDone = 0,
    kFailed = 1,  ///< Nothing could be shown, or a change could not be made.
    kWrongUsage = 2,
    kInterrupted = 130,
};

struct CommandContext {
    int exitStatus = kDone;
};

void addStatusCommand(CLI::App& app, CommandContext& context);
void addActivityCommand(CLI::App& app, CommandContext& context);
void addExportCommand(CLI::App& app, CommandContext& context);
void addLogCommand(CLI::App& app, CommandContext& context);
void addPlanCommand(CLI::App& app, CommandContext& context);
void addConnectCommand(CLI::App& app, CommandContext& context);
void addDisconnectCommand(CLI::App& app, CommandContext& context);

}  // namespace vorn::cli
