#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/sources/activity_summary.hpp"
#include "ui/views/claude_finder.hpp"

namespace vorn {

class Integrations;
class UsageModel;

/// How many replies there are and in how many projects.
struct ActivityCount {
    std::size_t replies = 0;
    std::size_t projects = 0;
};
ActivityCount activityCount(const ActivitySummary& activity);

/// How Vorn and Claude Code are connected: the executable, the status line and the transcripts.
class ClaudePresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString executable READ executable NOTIFY changed FINAL)
    Q_PROPERTY(bool hasExecutable READ hasExecutable NOTIFY changed FINAL)
    Q_PROPERTY(QString origin READ origin NOTIFY changed FINAL)
    Q_PROPERTY(QString executableProblem READ executableProblem NOTIFY changed FINAL)
    Q_PROPERTY(bool isChosen READ isChosen NOTIFY changed FINAL)
    Q_PROPERTY(bool canChoose READ canChoose NOTIFY changed FINAL)
    Q_PROPERTY(bool canCheck READ canCheck NOTIFY changed FINAL)
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY changed FINAL)
    Q_PROPERTY(QString checkResult READ checkResult NOTIFY changed FINAL)
    Q_PROPERTY(bool hasCheckFailed READ hasCheckFailed NOTIFY changed FINAL)
    Q_PROPERTY(LineState lineState READ lineState NOTIFY changed FINAL)
    Q_PROPERTY(QString lineTitle READ lineTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString lineText READ lineText NOTIFY changed FINAL)
    Q_PROPERTY(QString lineProblem READ lineProblem NOTIFY changed FINAL)
    Q_PROPERTY(QString ownCommand READ ownCommand NOTIFY changed FINAL)
    Q_PROPERTY(QString demonstration READ demonstration NOTIFY changed FINAL)
    Q_PROPERTY(QString activityFolder READ activityFolder NOTIFY changed FINAL)
    Q_PROPERTY(QString activityText READ activityText NOTIFY changed FINAL)
    Q_PROPERTY(QString fixedFamily READ fixedFamily CONSTANT FINAL)

public:
    enum LineState : int { Connected, NeedsReconnecting, NotConnected };
    Q_ENUM(LineState)

    struct Content {
        QString executable;  ///< Its path, or that there is none.
        bool hasExecutable = false;
        QString origin;             ///< How it was found, and its version.
        QString executableProblem;  ///< The problems are empty where there is none.
        bool isChosen = false;      ///< By the user rather than found.
        bool canChoose = false;
        bool canCheck = false;
        bool isChecking = false;
        QString checkResult;  ///< Empty before the first one.
        bool hasCheckFailed = false;
        LineState lineState = NotConnected;
        QString lineTitle;
        QString lineText;
        QString lineProblem;
        QString ownCommand;     ///< The user's, which runs behind the relay; else empty.
        QString demonstration;  ///< Why nothing can be changed; else empty.
        QString activityFolder;
        QString activityText;
        bool operator==(const Content&) const = default;
    };

    /// All of them must outlive it.
    struct Sources {
        UsageModel& model;
        Integrations& integrations;
        ClaudeFinder& finder;
    };
    explicit ClaudePresenter(const Sources& sources, QObject* parent = nullptr);

    [[nodiscard]] const QString& executable() const { return m_content.executable; }
    [[nodiscard]] bool hasExecutable() const { return m_content.hasExecutable; }
    [[nodiscard]] const QString& origin() const { return m_content.origin; }
    [[nodiscard]] const QString& executableProblem() const { return m_content.executableProblem; }
    [[nodiscard]] bool isChosen() const { return m_content.isChosen; }
    [[nodiscard]] bool canChoose() const { return m_content.canChoose; }
    [[nodiscard]] bool canCheck() const { return m_content.canCheck; }
    [[nodiscard]] bool isChecking() const { return m_content.isChecking; }
    [[nodiscard]] const QString& checkResult() const { return m_content.checkResult; }
    [[nodiscard]] bool hasCheckFailed() const { return m_content.hasCheckFailed; }
    [[nodiscard]] LineState lineState() const { return m_content.lineState; }
    [[nodiscard]] const QString& lineTitle() const { return m_content.lineTitle; }
    [[nodiscard]] const QString& lineText() const { return m_content.lineText; }
    [[nodiscard]] const QString& lineProblem() const { return m_content.lineProblem; }
    [[nodiscard]] const QString& ownCommand() const { return m_content.ownCommand; }
    [[nodiscard]] const QString& demonstration() const { return m_content.demonstration; }
    [[nodiscard]] const QString& activityFolder() const { return m_content.activityFolder; }
    [[nodiscard]] const QString& activityText() const { return m_content.activityText; }
    /// The system's font for commands and paths.
    [[nodiscard]] static QString fixedFamily();

    /// Asks the client now, and looks for it again.
    Q_INVOKABLE void check();
    Q_INVOKABLE void clearChoice();
    Q_INVOKABLE void connectLine();
    Q_INVOKABLE void disconnectLine();

signals:
    void changed();

private:
    void find();
    void update();
    void count();

    const Sources m_sources;
    ActivityCount m_count;
    Content m_content;
};

ClaudePresenter::Content claudeContent(const ClaudePresenter::Sources& sources, const ActivityCount& count);

}  // namespace vorn
