#pragma once

#include <string>

#include "core/analysis/window_assessment.hpp"
#include "core/wording/phrase.hpp"

/// What is said beside the chart of a window: how fast it is used, and where that leads.
namespace vorn::Format {

/// "sustainable 22%/h"; empty while that is not known.
Phrase sustainableText(const WindowAssessment& assessment);
/// "116% · 0% unused", at the horizon; empty without a projection.
Phrase projectedText(const WindowAssessment& assessment);
/// After the word "Resets": "in 1h 15m · 22:00", "not known"; empty while the window has not begun.
Phrase resetMoment(const WindowAssessment& assessment, Instant now);

/// The chart in a sentence, for a screen reader: "72% used, 3 points behind even pace, projected 116% at reset, reaches
/// the limit at 13:15, resets 14:30"; "Begins with the next message" for a window without a beginning.
std::string spokenCourse(const WindowAssessment& assessment, Instant now);

}  // namespace vorn::Format
