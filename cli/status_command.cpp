#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/live_readings.hpp"
#include "cli/status_json.hpp"
#include "cli/status_line.hpp"
#include "cli/status_text.hpp"
#include "core/support/interrupts.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"
#include "demo/demo.hpp"
#include "ui/format/format.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kWatchInterval = 5s;

struct StatusArguments {
    LiveRequest live;
    std::string claudePath;
    std::string format = "text";
    std::string demo;
    bool demoIfEmpty = false;
    bool json = false;
    bool rates = false;
    bool probe = false;
    bool noProbe = false;
    bool watch = false;
};

LiveRequest liveRequest(const StatusArguments& arguments) {
    LiveRequest request = arguments.live;
    if (!arguments.claudePath.empty()) {
        request.claudePath = arguments.claudePath;
    }
    if (arguments.probe) {
        request.probing = Probing::always;
    } else if (arguments.noProbe) {
        request.probing = Probing::never;
    }
    request.wholeWeek = arguments.rates;
    return request;
}

StatusReport demoReport(demo::Scenario scenario, Instant now) {
    demo::Demo demo = demo::makeDemo(scenario, now);
    return analyse({.windows = std::move(demo.windows),
                    .insights = std::move(demo.insights),
                    .history = std::move(demo.history),
                    .activity = ActivitySummary(std::move(demo.activity)),
                    .plan = std::move(demo.plan)},
                   now);
}

Detail detailFor(const StatusArguments& arguments) {
    const bool isLine = arguments.format == "plain" || arguments.format == "tmux" || arguments.format == "waybar";
    return isLine ? Detail::line : Detail::full;
}

StatusReport readReport(const StatusArguments& arguments, const LiveRequest& request, LiveMemory& memory,
                        const Cancellation& cancellation) {
    if (const auto scenario = demo::scenarioNamed(arguments.demo)) {
        return demoReport(*scenario, request.now.value_or(systemNow()));
    }
    Readings readings = readLive(request, memory, cancellation);
    StatusReport report = analyse(std::move(readings), request.now.value_or(systemNow()), detailFor(arguments));
    report.relay = readRelayState();
    return report;
}

bool isForPeople(const StatusArguments& arguments) {
    return !arguments.json && arguments.format == "text";
}

/// What goes to standard output; empty when there is nothing to say to a person.
std::string render(const StatusReport& report, const StatusArguments& arguments, const Terminal& terminal) {
    if (arguments.json || arguments.format == "json") {
        return dumpJson(statusJson(report, arguments.rates), true) + "\n";
    }
    if (arguments.format == "plain") {
        return plainLine(report) + "\n";
    }
    if (arguments.format == "tmux") {
        return tmuxSegment(report) + "\n";
    }
    if (arguments.format == "waybar") {
        return waybarModule(report) + "\n";
    }
    if (report.cards.empty()) {
        return {};
    }
    return (arguments.demo.empty() ? "" : "Demonstration with invented figures\n\n") +
           renderStatus(report, terminal, {.rates = arguments.rates});
}

/// Why there is nothing, or nothing newer; empty when all is well. The line breaks of an error's text are its own;
/// everything else that could steer a terminal goes.
std::string complaint(const StatusReport& report) {
    std::string text = report.isHistorySaved ? "" : "The history cannot be saved.\n";
    if (!report.failure) {
        return report.cards.empty()
                   ? text + "There is no current reading. Run vornctl status without --no-probe to ask Claude Code.\n"
                   : text;
    }
    std::string_view rest = report.failure->message;
    while (!rest.empty()) {
        const auto end = rest.find('\n');
        text += printable(rest.substr(0, end)) + "\n";
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    if (!report.failure->advice.empty()) {
        text += report.failure->advice + "\n";
    }
    if (report.failure->retryAt) {
        text += "Not asked again before " + Format::clock(*report.failure->retryAt, report.now) +
                "; --probe asks at once.\n";
    }
    return text;
}

int showOnce(const StatusArguments& arguments, const Cancellation& cancellation) {
    const Terminal terminal = describeTerminal(STDOUT_FILENO);
    LiveMemory memory;
    const StatusReport report = readReport(arguments, liveRequest(arguments), memory, cancellation);
    std::cout << render(report, arguments, terminal) << std::flush;
    std::cerr << complaint(report);
    if (!report.cards.empty()) {
        return kDone;
    }
    // For a newcomer who has nothing to look at yet.
    if (arguments.demoIfEmpty && isForPeople(arguments)) {
        std::cout << "\nDemonstration with invented figures: this is what Vorn shows while a limit is at risk.\n\n"
                  << renderStatus(demoReport(demo::Scenario::atRisk, report.now), terminal, {.rates = arguments.rates});
    }
    return kFailed;
}

/// The terminal's other screen without a cursor, for as long as the object lives.
class WatchScreen {
public:
    explicit WatchScreen(bool active) : m_active(active) { write("\x1b[?1049h\x1b[?25l\x1b[HReading…"); }
    WatchScreen(const WatchScreen&) = delete;
    WatchScreen& operator=(const WatchScreen&) = delete;
    ~WatchScreen() { write("\x1b[?25h\x1b[?1049l"); }

    /// Draws over what is there, so that nothing flickers. What does not fit is left out at the end of `text`, never of
    /// `foot`: a longer one would scroll the top away.
    void show(const std::string& text, const std::string& foot, const Terminal& terminal) const {
        if (!m_active) {
            std::cout << text << std::flush;
            std::cerr << foot;
            return;
        }
        std::vector<std::string> footLines;
        for (const std::string& line : linesOf(foot)) {
            std::ranges::move(wrapped(line, terminal.width), std::back_inserter(footLines));
        }
        std::vector<std::string> lines = linesOf(text);
        lines.resize(std::min(lines.size(), terminal.height - std::min(footLines.size(), terminal.height)));
        lines.insert(lines.end(), footLines.begin(), footLines.end());
        lines.resize(std::min(lines.size(), terminal.height));
        std::cout << "\x1b[H";
        for (std::size_t i = 0; i < lines.size(); ++i) {
            std::cout << (i == 0 ? "" : "\n") << lines[i] << "\x1b[K";
        }
        std::cout << "\x1b[J" << std::flush;
    }

private:
    static std::vector<std::string> linesOf(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    void write(const char* sequence) const {
        if (m_active) {
            std::cout << sequence << std::flush;
        }
    }
    bool m_active;
};

/// False once cancelled.
bool waitFor(Seconds time, const Cancellation& cancellation) {
    pollfd descriptor{.fd = cancellation.descriptor(), .events = POLLIN, .revents = 0};
    ::poll(&descriptor, 1, static_cast<int>(time / 1ms));
    return !cancellation.isCancelled();
}

/// Until interrupted, which is how it is meant to end.
int watch(const StatusArguments& arguments, const Cancellation& cancellation) try {
    LiveRequest request = liveRequest(arguments);
    LiveMemory memory;
    const WatchScreen screen(describeTerminal(STDOUT_FILENO).interactive);
    do {
        const StatusReport report = readReport(arguments, request, memory, cancellation);
        const Terminal terminal = describeTerminal(STDOUT_FILENO);
        screen.show(render(report, arguments, terminal), complaint(report), terminal);
        request.staleAfter.reset();  // from the second time on as often as the application would
        if (request.probing == Probing::always) {
            request.probing = Probing::whenStale;
        }
    } while (std::cout && waitFor(kWatchInterval, cancellation));
    return kDone;
} catch (const Cancelled&) {
    return kDone;
}

}  // namespace

void addStatusCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<StatusArguments>();
    CLI::App* command = app.add_subcommand("status", "How much of each limit is used, and where that leads");
    command
        ->add_option("--claude", arguments->claudePath,
                     "The claude executable to ask, instead of the application's choice or looking for one")
        ->type_name("PATH");
    auto* probe = command->add_flag("--probe", arguments->probe, "Ask Claude Code now, however fresh the figures are");
    command->add_flag("--no-probe", arguments->noProbe, "Never ask Claude Code, show what is known")->excludes(probe);
    command->add_flag("--rates", arguments->rates, "Add the burn rate over five horizons");
    auto* json = command->add_flag("--json", arguments->json, "Print one JSON object");
    command->add_option("--format", arguments->format, "text, plain (one line), tmux, waybar or json")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"text", "plain", "tmux", "waybar", "json"}).description(""))
        ->excludes(json);
    std::vector<std::string> scenarios;
    std::ranges::transform(demo::allScenarios, std::back_inserter(scenarios), demo::name);
    auto* demo =
        command
            ->add_option("--demo", arguments->demo,
                         "Invented figures, writing nothing: comfortable, watch, at-risk, limited or planned-reset")
            ->type_name("SCENARIO")
            ->check(CLI::IsMember(scenarios).description(""));
    command->add_flag("--demo-if-empty", arguments->demoIfEmpty, "Add a demonstration when there is no reading")
        ->excludes(demo);
    addNowOption(*command, arguments->live.now);
    command->add_flag("--watch", arguments->watch, "Redraw every few seconds until interrupted");
    command->callback([arguments, &context] {
        const Cancellation& interrupted = catchInterrupts();
        context.exitStatus = arguments->watch ? watch(*arguments, interrupted) : showOnce(*arguments, interrupted);
    });
}

}  // namespace vorn::cli
