#pragma once

#include <QString>

#include "core/analysis/window_assessment.hpp"
#include "ui/views/view_enums.hpp"

namespace vorn {

/// What the card of one window says and draws. Fractions are 0..1 of the bar, negative when there is nothing to draw.
struct WindowCardContent {
    WindowKind kind;
    QString title;
    StatusForViews::Status status = StatusForViews::Comfortable;
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
    QString spoken;        ///< All of it as one sentence, for those who listen.
    bool operator==(const WindowCardContent&) const = default;
};

WindowCardContent windowCardContent(const WindowAssessment& assessment, Instant now);

/// Keeps numbers with signs and units, and times of day, in order inside right-to-left layouts.
QString leftToRight(const std::string& text);

}  // namespace vorn
