#include <algorithm>
#include <iostream>
#include <memory>
#include <vector>

#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/terminal.hpp"
#include "core/analysis/outcomes.hpp"
#include "core/data/history/history_file.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/wording/outcome_text.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

struct LogArguments {
    Seconds since = 30 * 24h;
    std::optional<Instant> now;
    bool json = false;
};

/// What is kept, and what the readings of the last days tell and nobody has kept yet. By time.
std::vector<Outcome> outcomesSince(Seconds span, Instant now) {
    std::vector<Outcome> outcomes = OutcomeStore(VornPaths::outcomes()).load();
    mergeOutcomes(outcomes, VornEngine::outcomes(HistoryFile(VornPaths::history(), 0ms).read().samples(), now));
    std::erase_if(outcomes, [&](const Outcome& outcome) { return outcome.at < now - span || outcome.at > now; });
    return outcomes;
}

std::string render(const std::vector<Outcome>& outcomes, const Terminal& terminal) {
    std::size_t dateCells = 0;
    std::size_t titleCells = 0;
    for (const Outcome& outcome : outcomes) {
        dateCells = std::max(dateCells, displayWidth(Format::dateAndTime(outcome.at)));
        titleCells = std::max(titleCells, displayWidth(printable(outcome.kind.title())));
    }
    std::string text;
    for (const Outcome& outcome : outcomes) {
        const bool isLimit = outcome.event == Outcome::Event::reachedLimit;
        text += "  " + paint(terminal, Ink::faint, fitted(Format::dateAndTime(outcome.at), dateCells)) + "  " +
                fitted(printable(outcome.kind.title()), titleCells) + "  " +
                paint(terminal, isLimit ? Ink::limited : Ink::plain, Format::outcomeText(outcome)) + "\n";
    }
    return text;
}

nlohmann::json outcomeJson(const Outcome& outcome) {
    nlohmann::json object = {{"event", rawValue(outcome.event)},
                             {"kind", outcome.kind.key()},
                             {"title", outcome.kind.title()},
                             {"at", formatIso8601(outcome.at)},
                             {"usedPercent", outcome.usedPercent},
                             {"text", Format::outcomeText(outcome)},
                             {"origin", outcome.origin == Outcome::Origin::reading ? "reading" : "refusedTurn"}};
    const auto put = [&](const char* key, std::optional<Instant> instant) {
        if (instant) {
            object[key] = formatIso8601(*instant);
        }
    };
    put("resetsAt", outcome.resetsAt);
    put("nextResetsAt", outcome.nextResetsAt);
    put("readAt", outcome.readAt);
    return object;
}

int showLog(const LogArguments& arguments) {
    const std::vector<Outcome> outcomes = outcomesSince(arguments.since, arguments.now.value_or(systemNow()));
    if (arguments.json) {
        nlohmann::json list = nlohmann::json::array();
        std::ranges::transform(outcomes, std::back_inserter(list), outcomeJson);
        std::cout << dumpJson({{"outcomes", std::move(list)}}, true) << "\n";
        return kDone;
    }
    if (outcomes.empty()) {
        std::cerr << "Nothing has happened yet that is worth a line: a limit that was reached, a window that ended.\n";
        return kDone;
    }
    std::cout << render(outcomes, describeTerminal(STDOUT_FILENO));
    return kDone;
}

}  // namespace

void addLogCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<LogArguments>();
    CLI::App* command = app.add_subcommand("log", "What happened to each limit: reached, reset early, moved, ended");
    addSpanOption(*command, "--since", arguments->since, "How far back to look, a year at most (default 30d)");
    addNowOption(*command, arguments->now);
    command->add_flag("--json", arguments->json, "Print one JSON object");
    command->callback([arguments, &context] { context.exitStatus = showLog(*arguments); });
}

}  // namespace vorn::cli
