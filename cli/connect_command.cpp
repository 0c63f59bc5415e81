#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>
#include <unistd.h>

#include "cli/commands.hpp"
#include "cli/line_diff.hpp"
#include "cli/terminal.hpp"
#include "core/data/own_files.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/sources/bridge_installer.hpp"
#include "core/sources/status_line_connection.hpp"
#include "core/support/executable_path.hpp"
#include "core/support/unicode/display_width.hpp"

namespace vorn::cli {
namespace {

namespace fs = std::filesystem;
using Kind = StatusLineIntegration::State::Kind;

struct ConnectArguments {
    bool dryRun = false;
    bool purge = false;
};

/// A path or a command with its control characters taken out.
std::string shown(const fs::path& text) {
    return printable(text.string());
}

std::string downstreamText(const std::optional<std::string>& command) {
    return command ? "then your own command:\n  " + printable(*command) + "\n"
                   : "and nothing after it, since you have no status line command of your own.\n";
}

Ink inkOf(const std::string& line) {
    switch (line.front()) {
        case '-':
            return Ink::limited;
        case '+':
            return Ink::comfortable;
        case '@':
            return Ink::accent;
        default:
            return Ink::plain;
    }
}

void showPlan(const StatusLineIntegration& integration) {
    const auto& places = integration.locations();
    const StatusLineIntegration::Change change = integration.plannedInstall();
    const fs::path relay = BridgeInstaller::find(runningExecutable());
    std::cout << "Nothing is changed. vornctl connect would copy\n  " << shown(relay) << "\nto\n  "
              << shown(places.bridge) << "\n";
    const std::vector<std::string> diff = lineDiff(change.before.value_or(""), change.after);
    if (diff.empty()) {
        std::cout << "and leave the settings as they are:\n  " << shown(places.settings) << "\n";
    } else {
        const Terminal terminal = describeTerminal(STDOUT_FILENO);
        std::cout << "and change the settings so:\n\n--- " << (change.before ? shown(places.settings) : "/dev/null")
                  << "\n+++ " << shown(places.settings) << "\n";
        for (const std::string& line : diff) {
            std::cout << paint(terminal, inkOf(line), printable(line)) << "\n";
        }
    }
    std::cout << "\nAfter every turn Claude Code would run Vorn's relay, "
              << downstreamText(integration.plannedDownstreamCommand());
}

int connect(const ConnectArguments& arguments) {
    const StatusLineIntegration integration = StatusLineConnection::current();
    if (arguments.dryRun) {
        showPlan(integration);
        return kDone;
    }
    const Kind before = integration.state().kind;
    StatusLineConnection::connect(integration, systemNow());
    std::cout << (before == Kind::installed ? "Already connected; the relay was copied afresh."
                  : before == Kind::stale   ? "Reconnected."
                                            : "Connected.")
              << " After every turn Claude Code runs Vorn's relay, " << downstreamText(integration.downstreamCommand());
    return kDone;
}

/// False when something could not be removed.
bool remove(const std::vector<fs::path>& paths) {
    bool isAllGone = true;
    for (const fs::path& path : paths) {
        std::error_code error;
        fs::remove(path, error);
        if (error) {
            std::cerr << "vornctl: cannot remove " << shown(path) << ": " << error.message() << "\n";
            isAllGone = false;
        }
    }
    return isAllGone;
}

int purge(const StatusLineIntegration& integration) {
    OwnFiles files = listOwnFiles();
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(integration.backup(), ignored))) {
        files.own.push_back(integration.backup());
    }
    if (files.own.empty()) {
        std::cout << "There is nothing of Vorn to remove.\n";
    } else {
        std::cout << "Removing what Vorn keeps:\n";
        for (const fs::path& path : files.own) {
            std::cout << "  " << shown(path) << "\n";
        }
        std::cout << std::flush;
    }
    const bool isAllGone = remove(files.own);
    if (!files.others.empty()) {
        std::cout << "Left where they are, since they are not Vorn's:\n";
        for (const fs::path& path : files.others) {
            std::cout << "  " << shown(path) << "\n";
        }
    }
    return isAllGone ? kDone : kFailed;
}

void sayDisconnected(const StatusLineIntegration& integration) {
    const auto settings = integration.readSettings();
    const auto statusLine = settings.find("statusLine");
    if (statusLine == settings.end()) {
        std::cout << "Disconnected. Claude Code has no status line, as before.\n";
        return;
    }
    const JSONValue* command = statusLine->second.member("command");
    std::cout << "Disconnected. Your own status line is in its place:\n  "
              << printable(command != nullptr && command->string() != nullptr ? *command->string()
                                                                              : statusLine->second.dump())
              << "\n";
}

int disconnect(const ConnectArguments& arguments) {
    const StatusLineIntegration integration = StatusLineConnection::current();
    const bool hasRecord = integration.readRecord().has_value();
    // Whoever cleans up need not have been connected.
    if (!arguments.purge || hasRecord || integration.state().kind != Kind::notInstalled) {
        StatusLineConnection::disconnect(integration);
        sayDisconnected(integration);
    }
    return arguments.purge ? purge(integration) : kDone;
}

int guarded(const ConnectArguments& arguments, int (*action)(const ConnectArguments&)) {
    try {
        return action(arguments);
    } catch (const IntegrationError& error) {
        std::cerr << "vornctl: " << printable(error.what()) << "\n";
        if (error.kind() == IntegrationError::Kind::noRecord &&
            StatusLineConnection::current().state().kind != Kind::notInstalled) {
            std::cerr << "vornctl connect makes a new record; after that, vornctl disconnect takes the relay out.\n";
        }
    } catch (const fs::filesystem_error& error) {
        std::cerr << "vornctl: " << shown(error.path1()) << ": " << error.code().message() << "\n";
    }
    return kFailed;
}

}  // namespace

void addConnectCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ConnectArguments>();
    CLI::App* command = app.add_subcommand("connect", "Have Claude Code's status line report to Vorn after every turn");
    command->add_flag("--dry-run", arguments->dryRun, "Show what would change, and change nothing");
    command->callback([arguments, &context] { context.exitStatus = guarded(*arguments, connect); });
}

void addDisconnectCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ConnectArguments>();
    CLI::App* command = app.add_subcommand("disconnect", "Put your own status line back as it was");
    command->add_flag("--purge", arguments->purge, "Then remove everything that Vorn keeps");
    command->callback([arguments, &context] { context.exitStatus = guarded(*arguments, disconnect); });
}

}  // namespace vorn::cli
