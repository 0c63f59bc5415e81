#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/window_assessment.hpp"
#include "ui/controls/view_enums.hpp"

namespace vorn {

/// What the card of one window says and draws. Fractions are 0..1 of the bar, negative when there is nothing to draw.
struct WindowCardContent {
    Q_GADGET
    QML_VALUE_TYPE(windowCard)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(vorn::StatusForViews::Status status MEMBER status)
    Q_PROPERTY(QString statusText MEMBER statusText)
    Q_PROPERTY(QString usedText MEMBER usedText)
    Q_PROPERTY(double used MEMBER used)
    Q_PROPERTY(double projected MEMBER projected)
    Q_PROPERTY(double evenPace MEMBER evenPace)
    Q_PROPERTY(int segments MEMBER segments)
    Q_PROPERTY(QString verdict MEMBER verdict)
    Q_PROPERTY(QString reset MEMBER reset)
    Q_PROPERTY(QString shortReset MEMBER shortReset)
    Q_PROPERTY(QString pace MEMBER pace)
    Q_PROPERTY(QString plannedReset MEMBER plannedReset)
    Q_PROPERTY(QString spoken MEMBER spoken)

public:
    WindowKind kind = WindowKind::session();
    QString title;
    StatusForViews::Status status = StatusForViews::Unknown;
    QString statusText;  ///< "At risk"
    QString usedText;    ///< "72%"
    double used = 0;
    double projected = -1;
    double evenPace = -1;
    int segments = 1;
    QString verdict;
    QString reset;         ///< "Resets in 1h 15m · 22:00", or why there is no such moment.
    QString shortReset;    ///< "resets in 1h 15m"; empty when the moment is unknown.
    QString pace;          ///< "35%/h from local activity · 3 points behind even pace"
    QString plannedReset;  ///< Said when a planned reset cuts the window short; else empty.
    QString spoken;        ///< All of it as one sentence, for a screen reader.
    bool operator==(const WindowCardContent&) const = default;
};

/// `isJudged`: else there are figures alone, without a verdict, a status or a rate.
WindowCardContent windowCardContent(const WindowAssessment& assessment, bool isJudged, Instant now);

}  // namespace vorn
