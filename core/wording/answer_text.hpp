#pragma once

#include <string>
#include <vector>

#include "core/analysis/answer.hpp"
#include "core/wording/phrase.hpp"

/// What is said of the answer as a whole.
namespace vorn::Format {

std::string sourceName(DataSource source);  ///< "claude /usage", "status line"

/// What stands there while there is no card.
struct Placeholder {
    std::string title;   ///< "No reading yet"
    std::string text;    ///< Why, or what comes next.
    std::string quoted;  ///< What the client itself said, to be shown as such; usually empty.
    bool operator==(const Placeholder&) const = default;
};
/// All empty when the stage is `ready`.
Placeholder placeholder(const Answer& answer);

/// The whole answer in one line: the head's, and where nothing can be concluded yet, why.
std::string headline(const Answer& answer);

/// Whether the client had nothing newer than old figures, and no other source has told more since.
bool areFiguresOld(const Answer& answer);

/// How old the figures are: "Read 3m ago from claude /usage", "Read just now from the status line", "Figures of 13:02;
/// Claude Code could not get newer ones"; empty without any.
std::string age(const Answer& answer);
/// The same for what stays on the screen: "Updated 20:44 · status line", "Asking claude /usage…", "Demonstration,
/// invented figures"; without figures "Checked 20:44 · claude /usage", where somebody was asked.
Phrase freshness(const Answer& answer);

/// What becomes of the figures although asking failed: the failure's advice, else who keeps them. Empty without a
/// failure.
std::string remedy(const Answer& answer);

/// "Not asked again before 20:44"; empty when the client may be asked.
Phrase retryText(const Answer& answer);

/// What cannot be saved: "The history cannot be saved.", "The reset plan cannot be saved: No space left on device".
std::vector<std::string> storageProblems(const Unsaved& unsaved);

/// What a full session costs: "5.3% of the week".
Phrase sessionCost(const SessionWeekRatio& ratio);
/// "12×5h left this week"; empty where that is not known.
Phrase sessionsLeftText(const Answer& answer);
/// "A full 5-hour session ≈ 5.3% of the week · 12×5h left this week"; empty without a ratio.
Phrase weekSessions(const Answer& answer);
/// "Measured on 3 sessions (120 session points) over the last 8 days."
std::string learntFrom(const SessionWeekRatio& ratio);
/// What is missing while there is no ratio.
std::string whyNoRatio(const Answer& answer);

/// What a tray or a bar shows when it is pointed at: the head and its reason, a line for each window, what is left of
/// the week, what failed, and that it is a demonstration. At least one line.
std::vector<std::string> tooltipLines(const Answer& answer);

}  // namespace vorn::Format
