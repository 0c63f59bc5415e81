#include "cli/transcripts.hpp"

#include <algorithm>
#include <chrono>
#include <iostream>

#include <fmt/format.h>
#include <unistd.h>

#include "cli/terminal.hpp"
#include "core/support/file.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/transcripts/local_activity_scanner.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

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

}  // namespace

std::filesystem::path transcriptsIn(const std::string& configDirectory) {
    return configDirectory.empty() ? LocalActivityScanner::defaultRoot() : expandTilde(configDirectory) / "projects";
}

std::vector<ActivityEvent> scanAtTerminal(LocalActivityScanner& scanner, Instant now) {
    ScanProgress progress;
    return scanner.scan(now, [&](std::uint64_t done, std::uint64_t total) { progress.update(done, total); });
}

bool tellWhetherThereAre(const std::filesystem::path& transcripts) {
    std::error_code ignored;
    if (std::filesystem::is_directory(transcripts, ignored)) {
        return true;
    }
    std::cerr << "vornctl: there are no transcripts in " << printable(transcripts.string())
              << "; use --root for another configuration directory\n";
    return false;
}

}  // namespace vorn::cli
