#include <algorithm>
#include <iostream>
#include <memory>

#include <unistd.h>

#include "cli/activity_report.hpp"
#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/terminal.hpp"
#include "cli/transcripts.hpp"
#include "core/support/json.hpp"
#include "core/transcripts/local_activity_scanner.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMargin = 2;  // cells

struct ActivityArguments {
    Seconds since = 24h;
    std::optional<Instant> now;
    std::string configDirectory;
    bool json = false;
};

int showActivity(const ActivityArguments& arguments) {
    const std::filesystem::path root = transcriptsIn(arguments.configDirectory);
    const Instant now = arguments.now.value_or(systemNow());
    // The customary spans are shown whatever span was asked for.
    LocalActivityScanner scanner(root, std::max(arguments.since, Seconds{168h}));
    std::vector<ActivityEvent> events = scanAtTerminal(scanner, now);
    std::erase_if(events, [&](const ActivityEvent& event) { return event.timestamp > now; });
    const ActivitySummary activity(std::move(events));
    const Terminal terminal = describeTerminal(STDOUT_FILENO);
    ActivityRequest request{.now = now, .since = arguments.since, .root = root};
    if (!arguments.json) {
        request.columns = std::clamp<std::size_t>(terminal.width, 2 * kMargin + 1, request.columns) - 2 * kMargin;
    }
    const ActivityReport report = reportActivity(activity, std::move(request));
    std::cout << (arguments.json ? dumpJson(activityJson(report), true) + "\n" : renderActivity(report, terminal));
    return tellWhetherThereAre(root) ? kDone : kFailed;
}

}  // namespace

void addActivityCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ActivityArguments>();
    CLI::App* command = app.add_subcommand("activity", "What Claude Code did on this machine, from its transcripts");
    addSpanOption(*command, "--since", arguments->since, "How far back to look (default 24h)");
    addRootOption(*command, arguments->configDirectory);
    addNowOption(*command, arguments->now);
    command->add_flag("--json", arguments->json, "Print one JSON object");
    command->callback([arguments, &context] { context.exitStatus = showActivity(*arguments); });
}

}  // namespace vorn::cli
