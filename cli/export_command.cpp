#include <cstdint>
#include <iostream>
#include <memory>
#include <sstream>
#include <system_error>

#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/terminal.hpp"
#include "cli/transcripts.hpp"
#include "core/data/activity/activity_summary.hpp"
#include "core/data/history/history_file.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/transcripts/export_text.hpp"
#include "core/transcripts/local_activity_scanner.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

enum class Table : std::uint8_t { history, activity };

struct ExportArguments {
    Table table = Table::history;
    ExportFormat format = ExportFormat::csv;
    Seconds since = 7 * 24h;
    std::string output;
    std::string configDirectory;
    std::optional<Instant> now;
};

std::string historyTable(const ExportArguments& arguments, Instant now) {
    std::vector<HistorySample> samples = HistoryFile(VornPaths::history(), 0ms).read().samples();
    std::erase_if(samples, [&](const HistorySample& sample) {
        return sample.observedAt < now - arguments.since || sample.observedAt > now + kClockSlack;
    });
    return exportHistory(samples, arguments.format);
}

std::string activityTable(const ExportArguments& arguments, Instant now) {
    LocalActivityScanner scanner(transcriptsIn(arguments.configDirectory), arguments.since);
    const ActivitySummary activity(scanAtTerminal(scanner, now));
    return exportActivity(activity.events(now - arguments.since, now + kClockSlack), arguments.format);
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
    const bool isHistory = arguments.table == Table::history;
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
    addChoice(*command, "what", arguments->table,
              Choices<Table>{{"history", Table::history}, {"activity", Table::activity}}, "history or activity")
        ->required()
        ->type_name("WHAT");
    addChoice(*command, "--format", arguments->format,
              Choices<ExportFormat>{{"csv", ExportFormat::csv}, {"json", ExportFormat::json}},
              "csv (the default) or json")
        ->type_name("FORMAT");
    addSpanOption(*command, "--since", arguments->since, "How far back to look (default 7d)");
    addRootOption(*command, arguments->configDirectory);
    addNowOption(*command, arguments->now);
    command->add_option("--output", arguments->output, "Replace this file instead of printing")->type_name("FILE");
    command->callback([arguments, &context] { context.exitStatus = writeTable(*arguments); });
}

}  // namespace vorn::cli
