#include "ui/settings/claude_finder.hpp"

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "core/support/process/process.hpp"
#include "core/support/text.hpp"
#include "core/usage_command/claude_locator.hpp"
#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_command_probe.hpp"

namespace vorn {
namespace {

constexpr Seconds kVersionPatience{10};
constexpr std::chrono::milliseconds kGrace{50};
/// Of what a program says that is not the client at all.
constexpr qsizetype kLongestVersion = 40;

/// "2.1.330" of "2.1.330 (Claude Code)".
QString versionIn(const std::string& output) {
    const QString line = QString::fromStdString(repairUtf8(output)).trimmed().section('\n', 0, 0).trimmed();
    return line.section(' ', 0, 0).left(kLongestVersion);
}

QString describe(const ProbeError& error) {
    switch (error.kind()) {
        case ProbeError::Kind::timedOut:
            return QStringLiteral("claude --version didn't answer in time.");
        case ProbeError::Kind::commandFailed:
            return QStringLiteral("claude --version failed: ") +
                   QString::fromStdString(error.payload()).trimmed().section('\n', 0, 0);
        default:
            return QString::fromStdString(error.what());
    }
}

QString notFound(const QString& overridePath) {
    return overridePath.isEmpty() ? QStringLiteral("Install Claude Code, or choose its executable.")
                                  : QStringLiteral("There is no program that can be run. Choose another one.");
}

}  // namespace

ClaudeFinder::~ClaudeFinder() {
    cancel();
}

ClaudeFinder::Answer ClaudeFinder::look(const QString& overridePath, Known known, const Cancellation& cancellation) {
    const auto path = ClaudeLocator::locate(overridePath.toStdString());
    if (!path) {
        return {.finding = {.problem = notFound(overridePath)}, .known = std::move(known)};
    }
    Finding finding{.path = QString::fromStdString(path->string())};
    const auto stamp = fileStamp(*path);
    if (known.path != *path || known.stamp != stamp || known.version.isEmpty()) {
        const std::vector<std::string> arguments{"--version"};
        try {
            const std::string output = UsageCommandProbe::execute(*path, arguments, kVersionPatience, &cancellation);
            known = {.path = *path, .stamp = stamp, .version = versionIn(output)};
        } catch (const ProbeError& error) {
            finding.problem = describe(error);
            return {.finding = finding, .known = {}};
        }
    }
    finding.version = known.version;
    if (finding.version.isEmpty()) {
        finding.problem = QStringLiteral("claude --version printed nothing.");
    }
    return {.finding = std::move(finding), .known = std::move(known)};
}

void ClaudeFinder::find(const QString& overridePath) {
    cancel();
    m_cancellation = std::make_shared<Cancellation>();
    const int search = ++m_search;
    Finding searching = m_finding;
    searching.isSearching = true;
    publish(searching);
    const bool isRunning = m_queue.run(
        [this, search, overridePath, known = m_known, cancellation = m_cancellation]() -> BackgroundQueue::Answer {
            Answer answer;
            try {
                answer = look(overridePath, known, *cancellation);
            } catch (const Cancelled&) {
                return nullptr;
            } catch (const std::exception& error) {
                answer.finding.problem = QString::fromUtf8(error.what());
            }
            // The queue drops answers once it is gone, and it goes with this object.
            return [this, search, answer] {
                if (search == m_search) {
                    m_known = answer.known;
                    publish(answer.finding);
                }
            };
        });
    if (!isRunning) {
        publish({.problem = QStringLiteral("Could not start a thread to look for claude.")});
    }
}

void ClaudeFinder::publish(const Finding& finding) {
    if (std::exchange(m_finding, finding) != finding) {
        emit changed();
    }
}

void ClaudeFinder::cancel() {
    if (m_cancellation) {
        m_cancellation->cancel(kGrace);
    }
}

}  // namespace vorn
