#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>

#include <fmt/format.h>
#include <unistd.h>

#include "cli/activity_report.hpp"
#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "core/sources/local_activity_scanner.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"

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

/// Tells a waiting person how far a long scan has come, on standard error and only on a terminal.
class ScanProgress {
public:
    ScanProgress() : m_terminal(describeTerminal(STDERR_FILENO)) {}
    ScanProgress(const ScanProgress&) = delete;
    ScanProgress& operator=(const ScanProgress&) = delete;
    ~ScanProgress() {
        if (m_shown) {
            std::cerr << "\r\x1b[K" << std::flush;
        }
    }

    void update(std::uint64_t done, std::uint64_t total) {
        const auto time = std::chrono::steady_clock::now();
        if (!m_terminal.interactive || time - m_last < (m_shown ? 100ms : 500ms)) {
            return;
        }
        m_last = time;
        m_shown = true;
        const double share = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
        std::cerr << fmt::format("\rReading transcripts {:3.0f}%", 100 * std::min(share, 1.0)) << std::flush;
    }

private:
    Terminal m_terminal;
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
    bool m_shown = false;
};

std::filesystem::path transcriptsIn(const std::string& configDirectory) {
    return configDirectory.empty() ? LocalActivityScanner::defaultRoot() : expandTilde(configDirectory) / "projects";
}

int showActivity(const ActivityArguments& arguments) {
    const std::filesystem::path root = transcriptsIn(arguments.configDirectory);
    const Instant now = arguments.now.value_or(systemNow());
    // The customary spans are shown whatever span was asked for.
    LocalActivityScanner scanner(root, std::max(arguments.since, Seconds{168h}));
    ActivitySummary activity;
    {
        ScanProgress progress;
        activity = ActivitySummary(
            scanner.scan(now, [&](std::uint64_t done, std::uint64_t total) { progress.update(done, total); }));
    }
    const Terminal terminal = describeTerminal(STDOUT_FILENO);
    ActivityRequest request{.now = now, .since = arguments.since, .root = root};
    if (!arguments.json) {
        request.columns = std::clamp<std::size_t>(terminal.width, 2 * kMargin + 1, request.columns) - 2 * kMargin;
    }
    const ActivityReport report = reportActivity(activity, std::move(request));
    std::cout << (arguments.json ? dumpJson(activityJson(report), true) + "\n" : renderActivity(report, terminal));
    std::error_code ignored;
    if (!std::filesystem::is_directory(root, ignored)) {
        std::cerr << "vornctl: there are no transcripts in " << printable(root.string())
                  << "; use --root for another configuration directory\n";
        return kFailed;
    }
    return kDone;
}

}  // namespace

void addActivityCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<ActivityArguments>();
    CLI::App* command = app.add_subcommand("activity", "What Claude Code did on this machine, from its transcripts");
    addSpanOption(*command, "--since", arguments->since, "How far back to look (default 24h)");
    command->add_option("--root", arguments->configDirectory, "Claude Code's configuration directory, if another")
        ->type_name("DIR");
    addNowOption(*command, arguments->now);
    command->add_flag("--json", arguments->json, "Print one JSON object");
    command->callback([arguments, &context] { context.exitStatus = showActivity(*arguments); });
}

}  // namespace vorn::cli
