#include "app/command_line.hpp"

#include <map>
#include <sstream>

#include <CLI/CLI.hpp>

namespace vorn {
namespace {

constexpr int kWrongUsage = 2;

std::map<std::string, demo::Scenario> scenarios() {
    std::map<std::string, demo::Scenario> names;
    for (const demo::Scenario scenario : demo::allScenarios) {
        names.emplace(demo::name(scenario), scenario);
    }
    return names;
}

std::string scenarioNames() {
    std::string names;
    for (const demo::Scenario scenario : demo::allScenarios) {
        names += (names.empty() ? "" : ", ") + std::string(demo::name(scenario));
    }
    return names;
}

}  // namespace

std::variant<LaunchRequest, CommandLineAnswer> parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Shows in the tray how much of your Claude Code plan is used, and whether to speed up or ease off.",
                 "vorn");
    app.set_version_flag("--version", std::string("vorn ") + VORN_VERSION, "Show the version");
    app.set_help_flag("-h,--help", "Show this help");
    app.footer(
        "Only one Vorn runs at a time: a second start hands its request to the first.\n"
        "The same answers in a terminal: vornctl status");

    LaunchRequest request;
    std::string scenario;
    std::string directory;
    app.add_flag("--show-dashboard", request.showDashboard, "Open the dashboard once running");
    app.add_flag("--show-popover", request.showPopover, "Open the popover once running");
    const auto* demoOption = app.add_option("--demo", scenario, "Invented figures: " + scenarioNames())
                                 ->option_text("SCENARIO")
                                 ->check(CLI::IsMember(scenarios()));
    const auto* snapshotOption =
        app.add_option("--snapshot", directory, "Write pictures of the views into DIR and end")
            ->option_text("DIR")
            ->check([](const std::string& value) { return value.empty() ? "needs a directory" : std::string(); });
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answer) {
        std::ostringstream output;
        app.exit(answer, output, output);
        return CommandLineAnswer{.output = output.str()};
    } catch (const CLI::ParseError& error) {
        return CommandLineAnswer{.exitStatus = kWrongUsage,
                                 .error = "vorn: " + std::string(error.what()) + "\nRun vorn --help for more.\n"};
    }
    if (demoOption->count() > 0) {
        request.demo = demo::scenarioNamed(scenario);
    }
    if (snapshotOption->count() > 0) {
        request.snapshot = directory;
    }
    return request;
}

}  // namespace vorn
