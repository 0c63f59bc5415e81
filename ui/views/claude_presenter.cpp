#include "ui/views/claude_presenter.hpp"

#include <QFontDatabase>
#include <QLocale>
#include <QStringList>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "app/model/integrations.hpp"
#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "core/sources/local_activity_scanner.hpp"
#include "core/sources/probe_error.hpp"
#include "core/support/file.hpp"
#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

using Content = ClaudePresenter::Content;
using Sources = ClaudePresenter::Sources;

/// With "~" for the home directory. Read from left to right, as paths and commands are.
QString shortPath(const QString& path) {
    const QString home = QString::fromStdString(homeDirectory().string());
    const bool isAtHome = home.size() > 1 && path.startsWith(home + '/');
    return leftToRight((isAtHome ? '~' + path.mid(home.size()) : path).toStdString());
}

QString clockText(Instant instant, const UsageModel& model) {
    return leftToRight(Format::clock(instant, model.now()));
}

QString counted(std::size_t count, const char* one, const char* many) {
    return QLocale(QLocale::English).toString(static_cast<qulonglong>(count)) + ' ' +
           QString::fromUtf8(count == 1 ? one : many);
}

void showExecutable(const Sources& sources, Content& content) {
    if (sources.model.isDemo()) {
        content.executable = QStringLiteral("claude");
        content.hasExecutable = true;
        content.origin = QStringLiteral("Neither looked for nor asked in a demonstration");
        return;
    }
    const ClaudeFinder::Finding& finding = sources.finder.finding();
    const QString& chosen = sources.model.preferences().claudePathOverride();
    content.isChosen = !chosen.isEmpty();
    content.executableProblem = finding.problem;
    content.hasExecutable = content.isChosen || !finding.path.isEmpty();
    if (finding.path.isEmpty()) {
        content.executable = content.isChosen ? shortPath(chosen) : QStringLiteral("claude was not found");
    } else {
        content.executable = shortPath(finding.path);
    }
    if (finding.isSearching && finding.path.isEmpty()) {
        content.executable = QStringLiteral("Looking for claude…");
        content.hasExecutable = false;
        return;
    }
    content.origin = content.isChosen ? QStringLiteral("Chosen by you") : QStringLiteral("Found on the search path");
    if (finding.path.isEmpty() && !content.isChosen) {
        content.origin.clear();
    }
    if (!finding.version.isEmpty()) {
        content.origin += QStringLiteral(" · ") + leftToRight(finding.version.toStdString());
    }
}

QString answerText(const UsageModel& model) {
    QStringList figures;
    for (const WindowAssessment& assessment : model.assessments()) {
        figures << QString::fromStdString(assessment.window.kind.title()) + ' ' +
                       leftToRight(Format::percent(assessment.window.usedPercent));
    }
    const QString answered = QStringLiteral("Answered ") + clockText(*model.lastProbeAt(), model);
    return figures.isEmpty() ? answered + QStringLiteral(", without any limits.")
                             : answered + QStringLiteral(": ") + figures.join(QStringLiteral(", ")) + '.';
}

QString failureText(const UsageModel& model) {
    const std::string& error = *model.lastProbeError();
    const QString advice = QString::fromStdString(ProbeError::adviceFor(error));
    const QString asked = model.lastProbeAt()
                              ? QStringLiteral("Asked ") + clockText(*model.lastProbeAt(), model) + QStringLiteral(": ")
                              : QString();
    // What stands below the first line is the client's own output.
    const QString text = asked + QString::fromStdString(error).trimmed().section('\n', 0, 0);
    return advice.isEmpty() ? text : text + '\n' + advice;
}

void showCheck(const Sources& sources, Content& content) {
    const UsageModel& model = sources.model;
    content.isChecking = model.isProbing();
    content.canChoose = !model.isDemo();
    content.canCheck = !model.isProbing() && !model.isDemo();
    if (model.isProbing()) {
        content.checkResult = QStringLiteral("Asking claude /usage…");
    } else if (model.lastProbeError()) {
        content.hasCheckFailed = true;
        content.checkResult = failureText(model);
    } else if (model.lastProbeAt()) {
        content.checkResult = answerText(model);
    }
}

QString liveText(const UsageModel& model) {
    const QString text = QStringLiteral("Live figures after every reply; ");
    return model.lastStatusLineAt()
               ? text + QStringLiteral("last one ") + clockText(*model.lastStatusLineAt(), model) + '.'
               : text + QStringLiteral("none yet.");
}

void showLine(const Sources& sources, Content& content) {
    const Integrations& integrations = sources.integrations;
    const StatusLineIntegration::State& state = integrations.statusLine();
    switch (state.kind) {
        case StatusLineIntegration::State::Kind::installed:
            content.lineState = ClaudePresenter::Connected;
            content.lineTitle = QStringLiteral("Connected");
            content.lineText = liveText(sources.model);
            break;
        case StatusLineIntegration::State::Kind::stale:
            content.lineState = ClaudePresenter::NeedsReconnecting;
            content.lineTitle = QStringLiteral("Needs to be reconnected");
            content.lineText = QStringLiteral("Claude Code runs ") + shortPath(QString::fromStdString(state.command));
            break;
        case StatusLineIntegration::State::Kind::notInstalled:
            content.lineState = ClaudePresenter::NotConnected;
            content.lineTitle = QStringLiteral("Not connected");
            content.lineText = QStringLiteral(
                "Connected, it tells live figures after every reply. Your own status line keeps running.");
            break;
    }
    content.lineProblem = integrations.statusLineError();
    content.demonstration = integrations.readOnlyReason();
    if (integrations.hasDownstreamCommand()) {
        content.ownCommand = shortPath(integrations.downstreamCommand());
    }
}

void showActivity(const Sources& sources, const ActivityCount& count, Content& content) {
    const UsageModel& model = sources.model;
    content.activityFolder = shortPath(QString::fromStdString(LocalActivityScanner::defaultRoot().string()));
    if (model.isDemo()) {
        content.activityFolder = QStringLiteral("Invented for the demonstration");
    } else if (!model.preferences().useLocalActivity()) {
        content.activityText = QStringLiteral("Not read while this is off");
        return;
    } else if (!model.hasScanned() && count.replies == 0) {
        content.activityText = QStringLiteral("Reading…");
        return;
    }
    if (count.replies == 0) {
        content.activityText = QStringLiteral("No replies in the last 7 days");
        return;
    }
    content.activityText = counted(count.replies, "reply", "replies") + QStringLiteral(" in ") +
                           counted(count.projects, "project", "projects");
    if (const auto last = model.activity().lastEventAt()) {
        content.activityText += QStringLiteral(" · last ") + clockText(*last, model);
    }
}

}  // namespace

ActivityCount activityCount(const ActivitySummary& activity) {
    std::unordered_set<std::string_view> projects;
    for (const ActivityEvent& event : activity.events()) {
        projects.insert(projectName(event.cwd));
    }
    return {.replies = activity.events().size(), .projects = projects.size()};
}

ClaudePresenter::Content claudeContent(const Sources& sources, const ActivityCount& count) {
    Content content;
    showExecutable(sources, content);
    showCheck(sources, content);
    showLine(sources, content);
    showActivity(sources, count, content);
    return content;
}

ClaudePresenter::ClaudePresenter(const Sources& sources, QObject* parent) : QObject(parent), m_sources(sources) {
    const UsageModel& model = sources.model;
    connect(&model, &UsageModel::changed, this, &ClaudePresenter::update);
    connect(&model, &UsageModel::isProbingChanged, this, &ClaudePresenter::update);
    connect(&model, &UsageModel::lastProbeErrorChanged, this, &ClaudePresenter::update);
    connect(&model, &UsageModel::activityChanged, this, &ClaudePresenter::count);
    connect(&sources.integrations, &Integrations::changed, this, &ClaudePresenter::update);
    connect(&sources.finder, &ClaudeFinder::changed, this, &ClaudePresenter::update);
    connect(&model.preferences(), &Preferences::claudePathOverrideChanged, this, &ClaudePresenter::find);
    connect(&model.preferences(), &Preferences::useLocalActivityChanged, this, &ClaudePresenter::update);
    count();
    find();
}

QString ClaudePresenter::fixedFamily() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

void ClaudePresenter::find() {
    if (m_sources.model.isDemo()) {
        return;
    }
    m_sources.finder.find(m_sources.model.preferences().claudePathOverride());
}

void ClaudePresenter::check() {
    m_sources.model.probe();
    find();
}

void ClaudePresenter::clearChoice() {
    m_sources.model.preferences().setClaudePathOverride({});
}

void ClaudePresenter::connectLine() {
    m_sources.integrations.connectStatusLine();
}

void ClaudePresenter::disconnectLine() {
    m_sources.integrations.disconnectStatusLine();
}

void ClaudePresenter::count() {
    m_count = activityCount(m_sources.model.activity());
    update();
}

void ClaudePresenter::update() {
    auto content = claudeContent(m_sources, m_count);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
