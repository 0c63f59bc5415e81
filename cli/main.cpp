#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/commands.hpp"
#include "core/support/process/process.hpp"

namespace {

/// Names an option and the type of its value, and leaves limits and exclusions to the description: a help text is for
/// reading.
class PlainFormatter : public CLI::Formatter {
public:
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 ? std::string() : " " + option->get_type_name();
    }
};

std::string explainWrongUsage(const CLI::App* app, const CLI::Error& error) {
    const CLI::App* command = app;
    std::string name = app->get_name();
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        name += " " + command->get_name();
    }
    std::string reason = error.what();
    const bool hasCommands = !command->get_subcommands([](const CLI::App*) { return true; }).empty();
    if (error.get_name() == "RequiredError" && hasCommands) {
        const auto unknown = app->remaining(true);
        reason = unknown.empty() ? "a command is required" : "there is no command " + unknown.front();
    }
    return name + ": " + reason + "\nRun " + name + " --help for more.\n";
}

/// The last one first, as CLI11 takes them. "help plan add" is "plan add --help", as people try it.
std::vector<std::string> argumentsFrom(int argc, char** argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    if (!arguments.empty() && arguments.front() == "help") {
        arguments.erase(arguments.begin());
        arguments.emplace_back("--help");
    }
    std::ranges::reverse(arguments);
    return arguments;
}

int run(int argc, char** argv) {
    // Inherited as ignored it would take the exit status of every child away.
    std::signal(SIGCHLD, SIG_DFL);
    CLI::App app("How much of your Claude Code plan is used, and whether to speed up or ease off.", "vornctl");
    app.set_version_flag("--version", std::string("vornctl ") + VORN_VERSION, "Show the version");
    app.set_help_flag("-h,--help", "Show this help");
    app.require_subcommand(1);
    app.failure_message(explainWrongUsage);
    app.formatter(std::make_shared<PlainFormatter>());
    app.get_formatter()->column_width(28);
    app.footer("vornctl help COMMAND tells more about a command.");

    vorn::cli::CommandContext context;
    vorn::cli::addStatusCommand(app, context);
    vorn::cli::addActivityCommand(app, context);
    vorn::cli::addExportCommand(app, context);
    vorn::cli::addLogCommand(app, context);
    vorn::cli::addPlanCommand(app, context);
    vorn::cli::addConnectCommand(app, context);
    vorn::cli::addDisconnectCommand(app, context);
    try {
        app.parse(argumentsFrom(argc, argv));
    } catch (const CLI::ParseError& error) {
        const bool isAnswer = error.get_exit_code() == 0;
        app.exit(error);
        return isAnswer ? vorn::cli::kDone : vorn::cli::kWrongUsage;
    } catch (const vorn::Cancelled&) {
        return vorn::cli::kInterrupted;
    }
    if (!std::cout.flush()) {
        std::cerr << "vornctl: the output could not be written\n";
        return vorn::cli::kFailed;
    }
    return context.exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vornctl: %s\n", error.what());
        return vorn::cli::kFailed;
    }
}
