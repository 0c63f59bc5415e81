#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/commands.hpp"

namespace {

vorn::Cancellation* interrupted = nullptr;

extern "C" void onInterrupt(int) {
    interrupted->cancel();
}

/// Names an option and the type of its value, and leaves limits and exclusions to the description: a help text is for
/// reading.
class PlainFormatter : public CLI::Formatter {
public:
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 ? std::string() : " " + option->get_type_name();
    }
};

/// A second interrupt ends the program the usual way, should the first one not be heard.
void watchForInterrupts(vorn::Cancellation& cancellation) {
    interrupted = &cancellation;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
}

int run(int argc, char** argv) {
    // Inherited as ignored it would take the exit status of every child away.
    std::signal(SIGCHLD, SIG_DFL);
    CLI::App app("How much of your Claude Code plan is used, and whether to speed up or ease off.", "vornctl");
    app.set_version_flag("--version", std::string("vornctl ") + VORN_VERSION);
    app.set_help_flag("-h,--help", "Show this help");
    app.require_subcommand(1);
    app.formatter(std::make_shared<PlainFormatter>());
    app.get_formatter()->column_width(28);

    vorn::Cancellation cancellation;
    watchForInterrupts(cancellation);
    vorn::cli::CommandContext context{.cancellation = cancellation};
    vorn::cli::addStatusCommand(app, context);
    vorn::cli::addActivityCommand(app, context);
    vorn::cli::addPlanCommand(app, context);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool isAnswer = error.get_exit_code() == 0;
        app.exit(error);
        return isAnswer ? vorn::cli::kDone : vorn::cli::kWrongUsage;
    } catch (const vorn::Cancelled&) {
        return vorn::cli::kInterrupted;
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
