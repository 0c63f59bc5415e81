#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/controls/view_enums.hpp"

namespace vorn {

/// Whether there is something to show, how fresh it is, and what to do when it cannot be had.
struct FreshnessContent {
    Q_GADGET
    QML_VALUE_TYPE(freshnessContent)
    Q_PROPERTY(vorn::StageForViews::Stage stage MEMBER stage)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString explanation MEMBER explanation)
    Q_PROPERTY(QString quoted MEMBER quoted)
    Q_PROPERTY(bool needsClaude MEMBER needsClaude)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(bool isAsking MEMBER isAsking)
    Q_PROPERTY(QString problem MEMBER problem)
    Q_PROPERTY(QString remedy MEMBER remedy)
    Q_PROPERTY(bool canRetry MEMBER canRetry)

public:
    StageForViews::Stage stage = StageForViews::Starting;
    // What stands there while there is no card; empty when ready.
    QString title;
    QString explanation;
    QString quoted;            ///< What the client itself said, to be shown as such.
    bool needsClaude = false;  ///< What went wrong is that the executable was not found.

    QString text;           ///< "Updated 20:44 · status line"
    bool isAsking = false;  ///< The client, at the moment.
    // What does not work although there is something to show; empty when all does, and while `title` tells of it.
    QString problem;
    QString remedy;         ///< What to do about it, or what happens next.
    bool canRetry = false;  ///< Asking again may help.
    bool operator==(const FreshnessContent&) const = default;
};

FreshnessContent freshnessContent(const Answer& answer);

}  // namespace vorn
