#include <algorithm>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/evidence_reader.hpp"
#include "cli/status/status_json.hpp"
#include "cli/status/status_line.hpp"
#include "cli/status/status_text.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/home_owner.hpp"
#include "core/support/json.hpp"
#include "core/support/process/interrupts.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/wording/connection_words.hpp"
#include "demo/demo.hpp"
#include "demo/demo_answer.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

constexpr Seconds kWatchInterval = 5s;

enum class OutputFormat : std::uint8_t { text, plain, tmux, waybar, json };
const Choices<OutputFormat> kFormats = {{"text", OutputFormat::text},
                                        {"plain", OutputFormat::plain},
                                        {"tmux", OutputFormat::tmux},
                                        {"waybar", OutputFormat::waybar},
                                        {"json", OutputFormat::json}};

Choices<demo::Scenario> scenarios() {
    Choices<demo::Scenario> choices;
    for (const demo::Scenario scenario : demo::allScenarios) {
        choices.emplace_back(demo::name(scenario), scenario);
    }
    return choices;
}

struct StatusArguments {
    std::string claudePath;
    OutputFormat format = OutputFormat::text;
    std::optional<demo::Scenario> demo;
    std::optional<Instant> now;
    bool demoIfEmpty = false;
    bool json = false;
    bool rates = false;
    bool probe = false;
    bool noProbe = false;
    bool watch = false;
};

/// More than a line for a bar or a prompt.
bool showsAll(const StatusArguments& arguments) {
    return arguments.format == OutputFormat::text || arguments.format == OutputFormat::json;
}

EvidenceRequest requestFor(const StatusArguments& arguments) {
    EvidenceRequest request{
        .claudePath = arguments.claudePath.empty() ? std::nullopt : std::optional(arguments.claudePath),
        .probing = arguments.probe     ? Probing::always
                   : arguments.noProbe ? Probing::never
                                       : Probing::whenStale,
        .staleAfter = ::isatty(STDOUT_FILENO) == 1 ? 60s : 300s,  // a bar or a script asks again by itself
        .wantsBreakdown = showsAll(arguments),
        .wholeWeek = arguments.rates,
        .withRatio = showsAll(arguments),
        .now = arguments.now};
    if (strangersHome(VornPaths::root())) {
        request.storesNothing = true;
        request.probing = Probing::never;  // what the client would write there as root is no better
    }
    return request;
}

/// What is shown: the answer, and outside a demonstration how Vorn stands with the status line.
struct Status {
    Answer answer;
    std::optional<RelayState> relay{};
    std::string restriction{};  ///< Why this is all that could be done; else empty.
};

Status demoStatus(demo::Scenario scenario, Instant now) {
    return {.answer = demo::answer(demo::makeDemo(scenario, now), now)};
}

Status readStatus(const StatusArguments& arguments, const EvidenceRequest& request, EvidenceReader& reader) {
    if (arguments.demo) {
        return demoStatus(*arguments.demo, request.now.value_or(systemNow()));
    }
    const Evidence evidence = reader.read(request);
    Status status{.answer = VornEngine::formAnswer(evidence, request.now.value_or(systemNow()))};
    if (showsAll(arguments)) {
        status.relay = readRelayState(status.answer.now, status.answer.activity.get());
    }
    if (const auto owner = strangersHome(VornPaths::root())) {
        status.restriction = ConnectionWords::notStoredAsRoot(VornPaths::root(), *owner);
    }
    return status;
}

/// What goes to standard error: why there is nothing, or nothing newer.
std::string remarks(const Status& status) {
    if (status.restriction.empty()) {
        return complaint(status.answer);
    }
    return status.restriction + "\n" + (status.answer.cards.empty() ? "There is no current reading.\n" : "");
}

/// That nothing is heard of the status line is explained once, and then only mentioned.
void noteWhatWasTold(const Status& status, const StatusArguments& arguments) {
    const bool isShown = arguments.format == OutputFormat::text && !status.answer.cards.empty();
    if (isShown && status.relay && status.relay->isSilenceNews && !arguments.now && status.restriction.empty()) {
        rememberSilenceTold(status.answer.now);
    }
}

/// What goes to standard output; empty when there is nothing to say to a person.
std::string render(const Status& status, const StatusArguments& arguments, const Terminal& terminal) {
    switch (arguments.format) {
        case OutputFormat::json:
            return dumpJson(statusJson(status.answer, status.relay, arguments.rates), true) + "\n";
        case OutputFormat::plain:
            return plainLine(status.answer) + "\n";
        case OutputFormat::tmux:
            return tmuxSegment(status.answer) + "\n";
        case OutputFormat::waybar:
            return waybarModule(status.answer) + "\n";
        case OutputFormat::text:
            break;
    }
    return renderStatus(status.answer, status.relay, terminal, {.rates = arguments.rates});
}

int showOnce(const StatusArguments& arguments, const Cancellation& cancellation) {
    const Terminal terminal = describeTerminal(STDOUT_FILENO);
    EvidenceReader reader(cancellation);
    const Status status = readStatus(arguments, requestFor(arguments), reader);
    std::cout << render(status, arguments, terminal) << std::flush;
    std::cerr << remarks(status);
    noteWhatWasTold(status, arguments);
    if (!status.answer.cards.empty()) {
        return kDone;
    }
    // For a newcomer who has nothing to look at yet.
    if (arguments.demoIfEmpty && arguments.format == OutputFormat::text) {
        const Status demo = demoStatus(demo::Scenario::atRisk, status.answer.now);
        std::cout << "\nThis is what Vorn shows while a limit is at risk.\n\n" << render(demo, arguments, terminal);
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
    EvidenceRequest request = requestFor(arguments);
    EvidenceReader reader(cancellation);
    const WatchScreen screen(describeTerminal(STDOUT_FILENO).interactive);
    do {
        const Status status = readStatus(arguments, request, reader);
        const Terminal terminal = describeTerminal(STDOUT_FILENO);
        screen.show(render(status, arguments, terminal), remarks(status), terminal);
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
    addChoice(*command, "--format", arguments->format, kFormats, "text, plain (one line), tmux, waybar or json")
        ->type_name("FORMAT")
        ->excludes(json);
    auto* demo = addChoice(*command, "--demo", arguments->demo, scenarios(),
                           "Invented figures, writing nothing: comfortable, watch, at-risk, limited or planned-reset")
                     ->type_name("SCENARIO");
    command->add_flag("--demo-if-empty", arguments->demoIfEmpty, "Add a demonstration when there is no reading")
        ->excludes(demo);
    addNowOption(*command, arguments->now);
    command->add_flag("--watch", arguments->watch, "Redraw every few seconds until interrupted");
    command->callback([arguments, &context] {
        if (arguments->json) {
            arguments->format = OutputFormat::json;
        }
        const Cancellation& interrupted = catchInterrupts();
        context.exitStatus = arguments->watch ? watch(*arguments, interrupted) : showOnce(*arguments, interrupted);
    });
}

}  // namespace vorn::cli
