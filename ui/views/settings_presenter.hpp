#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <QtQml/qqmlregistration.h>

#include "ui/views/settings_window.hpp"

namespace vorn {

/// The user's choices and what is said beside them. What is set here holds at once.
class SettingsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString storeProblem READ storeProblem NOTIFY changed FINAL)
    Q_PROPERTY(QList<QString> intervals READ intervals NOTIFY changed FINAL)
    Q_PROPERTY(int interval READ interval WRITE setInterval NOTIFY changed FINAL)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY changed FINAL)
    Q_PROPERTY(bool canLaunchAtLogin READ canLaunchAtLogin NOTIFY changed FINAL)
    Q_PROPERTY(QString loginText READ loginText NOTIFY changed FINAL)
    Q_PROPERTY(QString loginProblem READ loginProblem NOTIFY changed FINAL)
    Q_PROPERTY(bool hasCells READ hasCells CONSTANT FINAL)
    Q_PROPERTY(bool isSingleRing READ isSingleRing WRITE setSingleRing NOTIFY changed FINAL)
    Q_PROPERTY(QString hotKeys READ hotKeys NOTIFY changed FINAL)
    Q_PROPERTY(bool isHotKeyRegistered READ isHotKeyRegistered NOTIFY changed FINAL)
    Q_PROPERTY(QString hotKeyProblem READ hotKeyProblem NOTIFY changed FINAL)
    Q_PROPERTY(QList<QString> styleTitles READ styleTitles CONSTANT FINAL)
    Q_PROPERTY(QList<QString> styleDescriptions READ styleDescriptions CONSTANT FINAL)
    Q_PROPERTY(int glyphStyle READ glyphStyle WRITE setGlyphStyle NOTIFY changed FINAL)
    Q_PROPERTY(bool colorWhenAtRisk READ colorWhenAtRisk WRITE setColorWhenAtRisk NOTIFY changed FINAL)
    Q_PROPERTY(bool notifyAtRisk READ notifyAtRisk WRITE setNotifyAtRisk NOTIFY changed FINAL)
    Q_PROPERTY(bool notifyLimited READ notifyLimited WRITE setNotifyLimited NOTIFY changed FINAL)
    Q_PROPERTY(bool notifyReset READ notifyReset WRITE setNotifyReset NOTIFY changed FINAL)
    Q_PROPERTY(QString noticeProblem READ noticeProblem NOTIFY changed FINAL)
    Q_PROPERTY(QString testText READ testText NOTIFY changed FINAL)
    Q_PROPERTY(bool useLocalActivity READ useLocalActivity WRITE setUseLocalActivity NOTIFY changed FINAL)

public:
    /// All of `deps` must outlive it.
    explicit SettingsPresenter(const SettingsWindow::Deps& deps, QObject* parent = nullptr);

    [[nodiscard]] const QString& storeProblem() const;
    /// "1 min", …, and with them the stored interval where it is another.
    [[nodiscard]] QStringList intervals() const;
    /// The stored one's place in `intervals`.
    [[nodiscard]] int interval() const;
    void setInterval(int index);

    [[nodiscard]] bool launchAtLogin() const;
    void setLaunchAtLogin(bool on);
    [[nodiscard]] bool canLaunchAtLogin() const;
    [[nodiscard]] QString loginText() const;  ///< Why it cannot be chosen; else empty.
    [[nodiscard]] const QString& loginProblem() const;

    [[nodiscard]] bool hasCells() const { return m_deps.hasCells; }
    [[nodiscard]] bool isSingleRing() const;
    void setSingleRing(bool on);

    [[nodiscard]] QString hotKeys() const;
    [[nodiscard]] bool isHotKeyRegistered() const;
    [[nodiscard]] QString hotKeyProblem() const;

    [[nodiscard]] static QStringList styleTitles();
    [[nodiscard]] static QStringList styleDescriptions();
    /// In the order of the titles.
    [[nodiscard]] int glyphStyle() const;
    void setGlyphStyle(int index);
    [[nodiscard]] bool colorWhenAtRisk() const;
    void setColorWhenAtRisk(bool on);

    [[nodiscard]] bool notifyAtRisk() const;
    void setNotifyAtRisk(bool on);
    [[nodiscard]] bool notifyLimited() const;
    void setNotifyLimited(bool on);
    [[nodiscard]] bool notifyReset() const;
    void setNotifyReset(bool on);
    /// Why the desktop shows no notices; else empty.
    [[nodiscard]] QString noticeProblem() const;
    [[nodiscard]] const QString& testText() const { return m_testText; }
    Q_INVOKABLE void sendTest();

    [[nodiscard]] bool useLocalActivity() const;
    void setUseLocalActivity(bool on);

signals:
    void changed();

private:
    void observe();

    const SettingsWindow::Deps m_deps;
    QString m_testText;
};

}  // namespace vorn
