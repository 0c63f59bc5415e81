#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/live_readings.hpp"
#include "cli/status_json.hpp"
#include "cli/status_line.hpp"
#include "cli/status_text.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"
#include "demo/demo.hpp"
#include "ui/format/format.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kWatchInterval = 5s;
/// While somebody watches, the client is asked as often as the application would.
constexpr Seconds kWatchStaleAfter = 300s;

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

Readings demoReadings(demo::Scenario scenario, Instant now) {
    demo::Demo demo = demo::makeDemo(scenario, now);
    return {.windows = std::move(demo.windows),
            .insights = std::move(demo.insights),
            .history = std::move(demo.history),
            .activity = ActivitySummary(std::move(demo.activity)),
            .plan = std::move(demo.plan)};
}

StatusReport readReport(const StatusArguments& arguments, const LiveRequest& request,
                        const Cancellation& cancellation) {
    const auto now = [&] {
        return request.now.value_or(systemNow());
    };
    if (const auto scenario = demo::scenarioNamed(arguments.demo)) {
        return analyse(demoReadings(*scenario, now()), now());
    }
    Readings readings = readLive(request, cancellation);
    return analyse(std::move(readings), now());
}

std::string render(const StatusReport& report, const StatusArguments& arguments) {
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
    return renderStatus(report, describeTerminal(STDOUT_FILENO), {.rates = arguments.rates});
}

/// The line breaks of an error's text are its own; everything else that could steer a terminal goes.
std::string failureText(const StatusReport& report) {
    std::string text;
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

/// For a newcomer who has nothing to look at yet.
void showDemonstration(const StatusArguments& arguments, Instant now) {
    const StatusReport report = analyse(demoReadings(demo::Scenario::atRisk, now), now);
    std::cout << "\nDemonstration with invented figures: this is what Vorn shows while a limit is at risk.\n\n"
              << render(report, arguments) << std::flush;
}

int showOnce(const StatusArguments& arguments, const Cancellation& cancellation) {
    const StatusReport report = readReport(arguments, liveRequest(arguments), cancellation);
    const bool isText = !arguments.json && arguments.format == "text";
    if (!arguments.demo.empty() && isText) {
        std::cout << "Demonstration with invented figures\n\n";
    }
    if (!isText || !report.cards.empty()) {
        std::cout << render(report, arguments) << std::flush;
    }
    if (report.failure) {
        std::cerr << failureText(report);
    } else if (report.cards.empty()) {
        std::cerr << "There is no current reading. Run vornctl status without --no-probe to ask Claude Code.\n";
    }
    if (report.cards.empty() && arguments.demoIfEmpty && isText) {
        showDemonstration(arguments, report.now);
    }
    return report.cards.empty() ? kFailed : kDone;
}

/// The terminal's other screen without a cursor, for as long as the object lives.
class WatchScreen {
public:
    explicit WatchScreen(bool active) : m_active(active) { write("\x1b[?1049h\x1b[?25l"); }
    WatchScreen(const WatchScreen&) = delete;
    WatchScreen& operator=(const WatchScreen&) = delete;
    ~WatchScreen() { write("\x1b[?25h\x1b[?1049l"); }

    /// Draws over what is there, so that nothing flickers.
    void show(const std::string& text) const {
        if (!m_active) {
            std::cout << text << std::flush;
            return;
        }
        std::string drawn = "\x1b[H";
        for (const char c : text) {
            drawn += c == '\n' ? "\x1b[K\n" : std::string(1, c);
        }
        std::cout << drawn << "\x1b[J" << std::flush;
    }

private:
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
    const WatchScreen screen(describeTerminal(STDOUT_FILENO).interactive);
    do {
        const StatusReport report = readReport(arguments, request, cancellation);
        screen.show(render(report, arguments) + (report.failure ? failureText(report) : std::string()));
        request.staleAfter = kWatchStaleAfter;
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
    command->add_option("--claude", arguments->claudePath, "The claude executable to ask, instead of looking for one")
        ->type_name("PATH");
    auto* probe = command->add_flag("--probe", arguments->probe, "Ask Claude Code now, however fresh the figures are");
    command->add_flag("--no-probe", arguments->noProbe, "Never ask Claude Code, show what is known")->excludes(probe);
    command->add_flag("--rates", arguments->rates, "Add the burn rate over five horizons");
    auto* json = command->add_flag("--json", arguments->json, "Print one JSON object (see docs/json.md)");
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
        context.exitStatus =
            arguments->watch ? watch(*arguments, context.cancellation) : showOnce(*arguments, context.cancellation);
    });
}

}  // namespace vorn::cli
