#pragma once

#include <QObject>
#include <memory>

#include <QtQml/qqmlregistration.h>

#include "ui/settings/claude_content.hpp"

namespace vorn {

class UsageModel;

/// How Vorn and Claude Code are connected, and what can be done about it.
class ClaudePresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::ClaudeContent content READ content NOTIFY changed FINAL)

public:
    /// What is shown and changed; all of it must outlive the presenter.
    struct Sources {
        UsageModel& model;
        Preferences& preferences;
        Integrations& integrations;
        ClaudeFinder& finder;
    };
    explicit ClaudePresenter(const Sources& sources, QObject* parent = nullptr);

    [[nodiscard]] const ClaudeContent& content() const { return m_content; }

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

    const Sources m_sources;
    std::shared_ptr<const ActivitySummary> m_counted;
    ActivityCount m_count;  ///< Counts `m_counted`.
    ClaudeContent m_content;
};

}  // namespace vorn
