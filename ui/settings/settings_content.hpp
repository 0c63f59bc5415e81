#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/settings/settings_window.hpp"

namespace vorn {

/// The user's choices and what is said beside them.
struct SettingsContent {
    Q_GADGET
    QML_VALUE_TYPE(settingsContent)
    Q_PROPERTY(QString storeProblem MEMBER storeProblem)
    Q_PROPERTY(QList<QString> intervals MEMBER intervals)
    Q_PROPERTY(int interval MEMBER interval)
    Q_PROPERTY(bool isOften MEMBER isOften)
    Q_PROPERTY(bool launchAtLogin MEMBER launchAtLogin)
    Q_PROPERTY(bool canLaunchAtLogin MEMBER canLaunchAtLogin)
    Q_PROPERTY(QString loginText MEMBER loginText)
    Q_PROPERTY(QString loginProblem MEMBER loginProblem)
    Q_PROPERTY(bool hasCells MEMBER hasCells)
    Q_PROPERTY(bool isSingleRing MEMBER isSingleRing)
    Q_PROPERTY(QString hotKeys MEMBER hotKeys)
    Q_PROPERTY(bool isHotKeyRegistered MEMBER isHotKeyRegistered)
    Q_PROPERTY(QString hotKeyProblem MEMBER hotKeyProblem)
    Q_PROPERTY(QList<QString> styleTitles MEMBER styleTitles)
    Q_PROPERTY(QList<QString> styleDescriptions MEMBER styleDescriptions)
    Q_PROPERTY(int glyphStyle MEMBER glyphStyle)
    Q_PROPERTY(bool colorWhenAtRisk MEMBER colorWhenAtRisk)
    Q_PROPERTY(bool notifyAtRisk MEMBER notifyAtRisk)
    Q_PROPERTY(bool notifyLimited MEMBER notifyLimited)
    Q_PROPERTY(bool notifyReset MEMBER notifyReset)
    Q_PROPERTY(QString noticeProblem MEMBER noticeProblem)
    Q_PROPERTY(bool useLocalActivity MEMBER useLocalActivity)

public:
    QString storeProblem;   ///< The problems are empty where there is none.
    QStringList intervals;  ///< "1 min", …, and with them the stored interval where it is another.
    int interval = 0;       ///< The stored one's place among them.
    bool isOften = false;   ///< So often that the service may refuse.
    bool launchAtLogin = false;
    bool canLaunchAtLogin = false;
    QString loginText;  ///< Why it cannot be chosen; else empty.
    QString loginProblem;
    bool hasCells = true;  ///< The tray has square cells.
    bool isSingleRing = false;
    QString hotKeys;
    bool isHotKeyRegistered = false;
    QString hotKeyProblem;
    QStringList styleTitles;
    QStringList styleDescriptions;
    int glyphStyle = 0;  ///< In the order of the titles.
    bool colorWhenAtRisk = false;
    bool notifyAtRisk = false;
    bool notifyLimited = false;
    bool notifyReset = false;
    QString noticeProblem;  ///< Why the desktop shows no notices.
    bool useLocalActivity = false;
    bool operator==(const SettingsContent&) const = default;
};

SettingsContent settingsContent(const SettingsWindow::Deps& deps);

/// The intervals to choose from, in minutes and ascending, with the stored one among them.
std::vector<double> offeredMinutes(double stored);

}  // namespace vorn
