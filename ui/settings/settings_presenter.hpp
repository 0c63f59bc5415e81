#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "ui/settings/settings_content.hpp"

namespace vorn {

/// The user's choices. What is set here holds at once.
class SettingsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::SettingsContent content READ content NOTIFY changed FINAL)
    Q_PROPERTY(QString testText READ testText NOTIFY testTextChanged FINAL)

public:
    /// All of `deps` must outlive it.
    explicit SettingsPresenter(const SettingsWindow::Deps& deps, QObject* parent = nullptr);

    [[nodiscard]] const SettingsContent& content() const { return m_content; }
    /// What became of the test notice; empty before the first one.
    [[nodiscard]] const QString& testText() const { return m_testText; }

    // Indices are those of the content's lists; one that is not there changes nothing.
    Q_INVOKABLE void setInterval(int index);
    Q_INVOKABLE void setGlyphStyle(int index);
    Q_INVOKABLE void setLaunchAtLogin(bool on);
    Q_INVOKABLE void setSingleRing(bool on);
    Q_INVOKABLE void setColorWhenAtRisk(bool on);
    Q_INVOKABLE void setNotifyAtRisk(bool on);
    Q_INVOKABLE void setNotifyLimited(bool on);
    Q_INVOKABLE void setNotifyReset(bool on);
    Q_INVOKABLE void setUseLocalActivity(bool on);
    /// Posts a notice for trying; nothing where the desktop shows no notices.
    Q_INVOKABLE void sendTest();

signals:
    void changed();
    void testTextChanged();

private:
    void observe();
    void update();

    const SettingsWindow::Deps m_deps;
    SettingsContent m_content;
    QString m_testText;
};

}  // namespace vorn
