#pragma once

#include <string>

#include "core/analysis/rate_reading.hpp"
#include "core/analysis/window_assessment.hpp"
#include "core/wording/phrase.hpp"

/// What is said of one window below its verdict.
namespace vorn::Format {

/// "35%/h from local activity", "35%/h, last 45 min", "11%/day, average", "No rate yet".
Phrase rateText(const WindowAssessment& assessment);

/// The rate, and how far the use is from even: "35%/h, last 45 min · 12 points ahead of even pace".
Phrase paceText(const WindowAssessment& assessment);

/// "Resets in 1h 30m · 14:30", "Reset time not known", "Begins with the next message".
Phrase resetText(const WindowAssessment& assessment, Instant now);
/// "resets in 1h 30m", where there is little room; empty without a reset time.
Phrase shortResetText(const WindowAssessment& assessment);

/// That the window is planned to a reset that the user added; empty when it is not.
std::string plannedResetNote(const WindowAssessment& assessment);

/// Why there is no rate over that horizon. `usesActivity`: whether rates may come from the transcripts.
std::string whyNoRate(RateReading::Horizon horizon, const WindowKind& kind, bool usesActivity);

/// The whole window in one line: "Session 72% · Limit in ~1h 10m at this pace · resets in 2h". `isJudged`: else there
/// is no verdict to tell.
std::string windowLine(const WindowAssessment& assessment, Instant now, bool isJudged = true);

/// The same for a screen reader: "Session, at risk, 72% used, Limit in about 1 hour 10 minutes at this pace, resets in
/// 2 hours, at 14:30, 35%/h, last 45 min, 12 points ahead of even pace". Not judged: "Session, 72% used, resets in …".
std::string spokenWindow(const WindowAssessment& assessment, Instant now, bool isJudged = true);

}  // namespace vorn::Format
