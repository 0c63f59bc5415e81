#include <iostream>
#include <memory>
#include <sstream>
#include <system_error>

#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/terminal.hpp"
#include "cli/transcripts.hpp"
#include "core/data/history_file.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/sources/activity_summary.hpp"
#include "core/sources/export_text.hpp"
#include "core/sources/local_activity_scanner.hpp"
#include "core/support/file.hpp"
#include "core/support/unicode/display_width.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

struct ExportArguments {
    std::string what;
    std::string format = "csv";
    Seconds since = 7 * 24h;
    std::string output;
    std::string configDirectory;
    std::optional<Instant> now;

    [[nodiscard]] ExportFormat form() const { return format == "json" ? ExportFormat::json : ExportFormat::csv; }
};

std::string historyTable(const ExportArguments& arguments, Instant now) {
    std::vector<HistorySample> samples = HistoryFile(VornPaths::history(), 0ms).read();
    std::erase_if(samples, [&](const HistorySample& sample) {
        return sample.observedAt < now - arguments.since || sample.observedAt > now + kClockSlack;
    });
    return exportHistory(samples, arguments.form());
}

std::string activityTable(const ExportArguments& arguments, Instant now) {
    LocalActivityScanner scanner(transcriptsIn(arguments.configDirectory), arguments.since);
    const ActivitySummary activity(scanAtTerminal(scanner, now));
    return exportActivity(activity.events(now - arguments.since, now + kClockSlack), arguments.form());
}

/// A file gets what is there. At a terminal a name from outside must not steer it.
void print(const std::string& table) {
    if (!describeTerminal(STDOUT_FILENO).interactive) {
        std::cout << table;
        return;
    }
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::cout << printable(line) << "\n";
    }
}

int writeTable(const ExportArguments& arguments) {
    const Instant now = arguments.now.value_or(systemNow());
    const bool isHistory = arguments.what == "history";
    // A table that was there before stays when there is nothing to replace it with.
    if (!isHistory && !tellWhetherThereAre(transcriptsIn(arguments.configDirectory))) {
        return kFailed;
    }
    const std::string table = isHistory ? historyTable(arguments, now) : activityTable(arguments, now);
    if (arguments.output.empty() || arguments.output == "-") {
        print(table);
        return kDone;
    }
    try {
        replaceFile(expandTilde(arguments.output), table);
    } catch (const std::filesystem::filesystem_error& error) {
        std::cerr << "vornctl: cannot write " << printable(arguments.output) << ": " << error.code().message() << "\n";
        return kFailed;
    }
    return kDone;
}

}  // namespace

void addExportCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ExportArguments>();
    CLI::App* command = app.add_subcommand("export", "The readings or the activity as a table for other programs");
    command->add_option("what", arguments->what, "history or activity")
        ->required()
        ->check(CLI::IsMember({"history", "activity"}))
        ->type_name("WHAT");
    command->add_option("--format", arguments->format, "csv (the default) or json")
        ->check(CLI::IsMember({"csv", "json"}))
        ->type_name("FORMAT");
    addSpanOption(*command, "--since", arguments->since, "How far back to look (default 7d)");
    addRootOption(*command, arguments->configDirectory);
    addNowOption(*command, arguments->now);
    command->add_option("--output", arguments->output, "Replace this file instead of printing")->type_name("FILE");
    command->callback([arguments, &context] { context.exitStatus = writeTable(*arguments); });
}

}  // namespace vorn::cli
