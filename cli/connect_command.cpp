#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>
#include <unistd.h>

#include "cli/commands.hpp"
#include "cli/line_diff.hpp"
#include "cli/record_keeper.hpp"
#include "cli/relay_state.hpp"
#include "cli/runtime_file.hpp"
#include "cli/terminal.hpp"
#include "core/data/own_files.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/status_line/bridge_installer.hpp"
#include "core/status_line/status_line_connection.hpp"
#include "core/support/executable_path.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/wording/connection_words.hpp"

namespace vorn::cli {
namespace {

namespace fs = std::filesystem;
using Kind = StatusLineIntegration::State::Kind;

struct ConnectArguments {
    bool dryRun = false;
    bool purge = false;
    bool replaces = false;
};

/// A path or a command with its control characters taken out.
std::string shown(const fs::path& text) {
    return printable(text.string());
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

void showPlan(const StatusLineIntegration& integration, bool replaces) {
    const auto& places = integration.locations();
    const auto [change, outcome] = StatusLineConnection::plannedConnect(integration, systemNow(), replaces);
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
    std::cout << "\nAfter every turn Claude Code would run Vorn's relay, " << ConnectionWords::downstream(outcome);
}

int connect(const ConnectArguments& arguments) {
    const StatusLineIntegration integration = StatusLineConnection::current();
    if (arguments.dryRun) {
        showPlan(integration, arguments.replaces);
        return kDone;
    }
    const auto outcome = StatusLineConnection::connect(integration, systemNow(), arguments.replaces);
    std::cout << ConnectionWords::connected(outcome, readRelayState().connection.unheard);
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

/// Copies of the settings whose status line is what the settings hold go; any other may be the last one of its kind.
std::vector<fs::path> sortBackups(const StatusLineIntegration& integration, OwnFiles& files) {
    const JSONValue::Object settings = integration.readSettings();
    const auto held = settings.find("statusLine");
    std::vector<fs::path> staying;
    for (const SettingsBackups::Backup& backup : integration.backups().all()) {
        const bool isHeld = held == settings.end() ? !backup.statusLine.has_value() : backup.statusLine == held->second;
        (backup.isReadable && isHeld ? files.own : staying).push_back(backup.path);
    }
    return staying;
}

void printList(const char* heading, const std::vector<fs::path>& paths) {
    if (paths.empty()) {
        return;
    }
    std::cout << heading << "\n";
    for (const fs::path& path : paths) {
        std::cout << "  " << shown(path) << "\n";
    }
    std::cout << std::flush;
}

int purge(const StatusLineIntegration& integration) {
    OwnFiles files = listOwnFiles();
    const std::vector<fs::path> staying = sortBackups(integration, files);
    std::error_code ignored;
    if (const auto record = findRuntimeFile(kRuntimeRecord); record && fs::exists(*record, ignored)) {
        files.own.push_back(*record);
    }
    if (files.own.empty()) {
        std::cout << "There is nothing of Vorn to remove.\n";
    }
    printList("Removing what Vorn keeps:", files.own);
    const bool isAllGone = remove(files.own);
    printList("Left where they are, since they hold another status line than your settings:", staying);
    printList("Left where they are, since they are not Vorn's:", files.others);
    return isAllGone ? kDone : kFailed;
}

int disconnect(const ConnectArguments& arguments) {
    const StatusLineIntegration integration = StatusLineConnection::current();
    StatusLineConnection::requireOwnHome(integration);
    const bool hasRecord = integration.readRecord().has_value();
    // Whoever cleans up need not have been connected.
    if (!arguments.purge || hasRecord || integration.state().kind != Kind::notInstalled) {
        std::cout << ConnectionWords::disconnected(StatusLineConnection::disconnect(integration)) << std::flush;
    }
    return arguments.purge ? purge(integration) : kDone;
}

int guarded(const ConnectArguments& arguments, int (*action)(const ConnectArguments&)) {
    try {
        return action(arguments);
    } catch (const IntegrationError& error) {
        std::cerr << "vornctl: " << ConnectionWords::problem(error) << "\n";
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
    command->add_flag("--replace", arguments->replaces,
                      "Also in place of a command around a relay, or of another Vorn's, of which a copy is kept");
    command->callback([arguments, &context] { context.exitStatus = guarded(*arguments, connect); });
}

void addDisconnectCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ConnectArguments>();
    CLI::App* command = app.add_subcommand("disconnect", "Put your own status line back as it was");
    command->add_flag("--purge", arguments->purge, "Then remove everything that Vorn keeps");
    command->callback([arguments, &context] { context.exitStatus = guarded(*arguments, disconnect); });
}

}  // namespace vorn::cli
