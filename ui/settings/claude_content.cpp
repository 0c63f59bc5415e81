#include "ui/settings/claude_content.hpp"

#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/support/file.hpp"
#include "core/transcripts/local_activity_scanner.hpp"
#include "core/wording/answer_text.hpp"
#include "core/wording/connection_words.hpp"
#include "core/wording/failure_text.hpp"
#include "core/wording/format.hpp"
#include "model/integrations.hpp"
#include "model/preferences/preferences.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

/// With "~" for the home directory. Read from left to right, as paths and commands are.
QString shortPath(const QString& path) {
    const QString home = QString::fromStdString(homeDirectory().string());
    const bool isAtHome = home.size() > 1 && path.startsWith(home + '/');
    return leftToRight((isAtHome ? '~' + path.mid(home.size()) : path).toStdString());
}

QString clockText(Instant instant, const Answer& answer) {
    return leftToRight(Format::clock(instant, answer.now));
}

QString counted(std::size_t count, const char* one, const char* many) {
    return QLocale(QLocale::English).toString(static_cast<qulonglong>(count)) + ' ' +
           QString::fromUtf8(count == 1 ? one : many);
}

void showFinding(const ClaudeFinder::Finding& finding, const QString& chosen, ClaudeContent& content) {
    const bool isFound = !finding.path.isEmpty();
    content.isChosen = !chosen.isEmpty();
    content.executableProblem = finding.problem;
    if (finding.isSearching && !isFound) {
        content.executable = QStringLiteral("Looking for claude…");
        return;
    }
    content.hasExecutable = isFound || content.isChosen;
    if (!content.hasExecutable) {
        content.executable = QStringLiteral("claude was not found");
        return;
    }
    content.executable = shortPath(isFound ? finding.path : chosen);
    content.origin = content.isChosen ? QStringLiteral("Chosen by you") : QStringLiteral("Found on the search path");
    if (!finding.version.isEmpty()) {
        content.origin += QStringLiteral(" · ") + leftToRight(finding.version.toStdString());
    }
}

void showExecutable(const ClaudeEvidence& evidence, ClaudeContent& content) {
    if (evidence.answer.isDemo) {
        content.executable = QStringLiteral("claude");
        content.hasExecutable = true;
        content.origin = QStringLiteral("Neither looked for nor asked in a demonstration");
        return;
    }
    showFinding(evidence.finding, evidence.preferences.claudePathOverride(), content);
}

QString answerText(const Answer& answer) {
    QStringList figures;
    for (const Answer::Card& card : answer.cards) {
        const UsageWindow& window = card.assessment.window;
        figures << QString::fromStdString(window.kind.title()) + ' ' + leftToRight(Format::percent(window.usedPercent));
    }
    const QString answered = QStringLiteral("Answered ") + clockText(*answer.asking.lastAt, answer);
    return figures.isEmpty() ? answered + QStringLiteral(", without any limits.")
                             : answered + QStringLiteral(": ") + figures.join(QStringLiteral(", ")) + '.';
}

QString failureText(const Answer& answer, const ProbeFailure& failure) {
    QString text = QString::fromStdString(Format::sentence(failure));
    if (answer.asking.lastAt) {
        const QString what =
            Format::wasNobodyAsked(failure) ? QStringLiteral("Tried %1: ") : QStringLiteral("Asked %1: ");
        text.prepend(what.arg(clockText(*answer.asking.lastAt, answer)));
    }
    const QString advice = QString::fromStdString(Format::advice(failure));
    return advice.isEmpty() ? text : text + '\n' + advice;
}

void showCheck(const ClaudeEvidence& evidence, ClaudeContent& content) {
    const Answer& answer = evidence.answer;
    const auto& failure = answer.asking.failure;
    content.isChecking = answer.asking.isRunning;
    content.canChoose = !answer.isDemo;
    content.canCheck = !answer.asking.isRunning && !answer.isDemo;
    if (answer.asking.isRunning) {
        content.checkResult = shownPhrase(Format::freshness(answer));
    } else if (failure) {
        // That there is no client is said where its path would stand.
        const bool isSaid = failure->kind == ProbeFailure::Kind::claudeNotFound && evidence.finding.path.isEmpty();
        content.checkProblem = isSaid ? QString() : failureText(answer, *failure);
    } else if (answer.asking.lastAt) {
        content.checkResult = answerText(answer);
    }
}

QString liveText(const Answer& answer) {
    const QString text = QStringLiteral("Live figures after every reply; ");
    const auto last = answer.lastObserved(DataSource::statusLine);
    return text + (last ? QStringLiteral("last one ") + clockText(*last, answer) + '.' : QStringLiteral("none yet."));
}

/// Since when a relay that should be heard is not.
std::optional<Instant> lineSilentSince(const Answer& answer, const ConnectionState& connection) {
    if (answer.isDemo || !connection.connectedAt || !answer.activity) {
        return std::nullopt;
    }
    std::vector<Instant> replies;
    std::ranges::transform(answer.activity->events(), std::back_inserter(replies), &ActivityEvent::timestamp);
    const auto heardAt = std::max(connection.connectedAt, answer.lastObserved(DataSource::statusLine));
    return silentSince(*heardAt, replies);
}

void showConnected(const Answer& answer, const ConnectionState& connection, ClaudeContent& content) {
    content.isLineSet = true;
    if (const auto since = lineSilentSince(answer, connection)) {
        content.isLineAmiss = true;
        content.connectAction = QStringLiteral("Reconnect");
        content.lineTitle = QStringLiteral("Not heard");
        content.lineText = QString::fromStdString(ConnectionWords::silence(*since, answer.now));
        return;
    }
    content.lineTitle = QStringLiteral("Connected");
    content.lineText = liveText(answer);
}

void showUnheard(const Unheard& unheard, ClaudeContent& content) {
    content.isLineSet = true;
    content.isLineAmiss = true;
    content.lineTitle = QStringLiteral("Not heard");
    content.lineText = QString::fromStdString(ConnectionWords::reason(unheard));
    if (unheard.reason == Unheard::Reason::relayMissing || unheard.reason == Unheard::Reason::relayCannotRun) {
        content.connectAction = QStringLiteral("Reconnect");
    }
}

void showNotConnected(const ConnectionState& connection, ClaudeContent& content) {
    content.connectAction = QStringLiteral("Connect");
    content.lineTitle = QStringLiteral("Not connected");
    content.lineText =
        connection.kind == ConnectionState::Kind::othersCommand
            ? QString::fromStdString(ConnectionWords::othersCommand(connection.command))
            : QStringLiteral("Connected, it tells live figures after every reply. Your own status line keeps running.");
}

void showLine(const ClaudeEvidence& evidence, ClaudeContent& content) {
    const Integrations& integrations = evidence.integrations;
    const ConnectionState& connection = integrations.connection();
    switch (connection.kind) {
        case ConnectionState::Kind::connected:
            showConnected(evidence.answer, connection, content);
            break;
        case ConnectionState::Kind::unheard:
            showUnheard(*connection.unheard, content);
            break;
        case ConnectionState::Kind::needsReconnecting:
            content.isLineSet = true;
            content.isLineAmiss = true;
            content.connectAction = QStringLiteral("Reconnect");
            content.lineTitle = QStringLiteral("Needs to be reconnected");
            content.lineText =
                QStringLiteral("Claude Code runs ") + shortPath(QString::fromStdString(connection.command));
            break;
        case ConnectionState::Kind::othersCommand:
        case ConnectionState::Kind::notConnected:
            showNotConnected(connection, content);
            break;
    }
    content.lineProblem = integrations.statusLineError();
    content.lineRemark = integrations.statusLineRemark();
    content.demonstration = integrations.readOnlyReason();
    if (integrations.hasDownstreamCommand()) {
        content.ownCommand = shortPath(integrations.downstreamCommand());
    }
}

QString activityText(const ClaudeEvidence& evidence) {
    const Answer& answer = evidence.answer;
    const ActivityCount& count = evidence.activity;
    if (!answer.isDemo && !evidence.preferences.useLocalActivity()) {
        return QStringLiteral("Not read while this is off");
    }
    if (!answer.activity) {
        return QStringLiteral("Reading…");
    }
    if (count.replies == 0) {
        return QStringLiteral("No replies in the last 7 days");
    }
    QString text = counted(count.replies, "reply", "replies") + QStringLiteral(" in ") +
                   counted(count.projects, "project", "projects");
    if (const auto last = answer.activity->lastEventAt()) {
        text += QStringLiteral(" · last ") + clockText(*last, answer);
    }
    return text;
}

}  // namespace

ActivityCount activityCount(const ActivitySummary* activity) {
    if (activity == nullptr) {
        return {};
    }
    std::unordered_set<std::string_view> projects;
    for (const ActivityEvent& event : activity->events()) {
        projects.insert(projectName(event.cwd));
    }
    return {.replies = activity->events().size(), .projects = projects.size()};
}

ClaudeContent claudeContent(const ClaudeEvidence& evidence) {
    ClaudeContent content;
    showExecutable(evidence, content);
    showCheck(evidence, content);
    showLine(evidence, content);
    content.activityFolder = evidence.answer.isDemo
                                 ? QStringLiteral("Invented for the demonstration")
                                 : shortPath(QString::fromStdString(LocalActivityScanner::defaultRoot().string()));
    content.activityText = activityText(evidence);
    return content;
}

}  // namespace vorn
