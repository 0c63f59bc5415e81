#pragma once

#include <QObject>
#include <QString>
#include <cstddef>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/settings/claude_finder.hpp"

namespace vorn {

class Integrations;
class Preferences;

/// How many replies there are and in how many projects.
struct ActivityCount {
    std::size_t replies = 0;
    std::size_t projects = 0;
};
/// `activity`: null for none.
ActivityCount activityCount(const ActivitySummary* activity);

/// How Vorn and Claude Code are connected: the executable, the status line and the transcripts.
struct ClaudeContent {
    Q_GADGET
    QML_VALUE_TYPE(claudeContent)
    Q_PROPERTY(QString executable MEMBER executable)
    Q_PROPERTY(bool hasExecutable MEMBER hasExecutable)
    Q_PROPERTY(QString origin MEMBER origin)
    Q_PROPERTY(QString executableProblem MEMBER executableProblem)
    Q_PROPERTY(bool isChosen MEMBER isChosen)
    Q_PROPERTY(bool canChoose MEMBER canChoose)
    Q_PROPERTY(bool canCheck MEMBER canCheck)
    Q_PROPERTY(bool isChecking MEMBER isChecking)
    Q_PROPERTY(QString checkResult MEMBER checkResult)
    Q_PROPERTY(QString checkProblem MEMBER checkProblem)
    Q_PROPERTY(bool isLineSet MEMBER isLineSet)
    Q_PROPERTY(bool isLineAmiss MEMBER isLineAmiss)
    Q_PROPERTY(QString connectAction MEMBER connectAction)
    Q_PROPERTY(QString lineTitle MEMBER lineTitle)
    Q_PROPERTY(QString lineText MEMBER lineText)
    Q_PROPERTY(QString lineProblem MEMBER lineProblem)
    Q_PROPERTY(QString lineRemark MEMBER lineRemark)
    Q_PROPERTY(QString ownCommand MEMBER ownCommand)
    Q_PROPERTY(QString demonstration MEMBER demonstration)
    Q_PROPERTY(QString activityFolder MEMBER activityFolder)
    Q_PROPERTY(QString activityText MEMBER activityText)

public:
    QString executable;  ///< Its path, or that there is none.
    bool hasExecutable = false;
    QString origin;             ///< How it was found, and its version.
    QString executableProblem;  ///< The problems are empty where there is none.
    bool isChosen = false;      ///< By the user rather than found.
    bool canChoose = false;
    bool canCheck = false;
    bool isChecking = false;
    QString checkResult;  ///< What the client answered last; empty before the first answer and after a failure.
    QString checkProblem;
    bool isLineSet = false;    ///< The settings run a relay of Vorn's.
    bool isLineAmiss = false;  ///< The settings run a relay, but nothing comes from it.
    QString connectAction;     ///< What the button that connects is called; empty for none.
    QString lineTitle;
    QString lineText;
    QString lineProblem;
    QString lineRemark;     ///< What there is to know of the last change; else empty.
    QString ownCommand;     ///< The user's, which runs behind the relay; else empty.
    QString demonstration;  ///< Why nothing can be changed; else empty.
    QString activityFolder;
    QString activityText;
    bool operator==(const ClaudeContent&) const = default;
};

/// What the content is formed from. What it points to must outlive the call only.
struct ClaudeEvidence {
    const Answer& answer;
    const Preferences& preferences;
    const Integrations& integrations;
    const ClaudeFinder::Finding& finding;
    ActivityCount activity;  ///< Counts the activity of the answer.
};
ClaudeContent claudeContent(const ClaudeEvidence& evidence);

}  // namespace vorn
