#include "core/wording/window_text.hpp"

#include <utility>

#include "core/support/text.hpp"
#include "core/wording/format.hpp"

namespace vorn::Format {
namespace {

bool knowsReset(const WindowAssessment& assessment) {
    return assessment.timeToReset && assessment.window.resetsAt;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string spokenVerdict(const WindowAssessment& assessment, Instant now) {
    std::string text = verdict(assessment, now);
    return assessment.timeToLimit ? replaced(std::move(text), "~" + duration(*assessment.timeToLimit),
                                             "about " + spokenDuration(*assessment.timeToLimit))
                                  : text;
}

std::string spokenReset(const WindowAssessment& assessment, Instant now) {
    return knowsReset(assessment) ? "resets in " + spokenDuration(*assessment.timeToReset) + ", at " +
                                        clock(*assessment.window.resetsAt, now)
                                  : resetText(assessment, now).text();
}

}  // namespace

Phrase rateText(const WindowAssessment& assessment) {
    if (!assessment.ratePerHour) {
        return words("No rate yet");
    }
    const WindowKind& kind = assessment.window.kind;
    const char* const joint = assessment.rateBasis == RateBasis::localActivity ? " " : ", ";
    return figure(rate(*assessment.ratePerHour, kind)) + (joint + basis(assessment.rateBasis, kind));
}

Phrase paceText(const WindowAssessment& assessment) {
    const auto delta = assessment.paceDelta();
    return joined({rateText(assessment), words(delta ? pace(*delta) : "")});
}

Phrase resetText(const WindowAssessment& assessment, Instant now) {
    if (knowsReset(assessment)) {
        return joined({words("Resets in ") + figure(duration(*assessment.timeToReset)),
                       figure(clock(*assessment.window.resetsAt, now))});
    }
    return words(assessment.window.usedPercent > 0 ? "Reset time not known" : "Begins with the next message");
}

Phrase shortResetText(const WindowAssessment& assessment) {
    return assessment.timeToReset ? words("resets in ") + figure(duration(*assessment.timeToReset)) : Phrase();
}

std::string plannedResetNote(const WindowAssessment& assessment) {
    return assessment.plannedResetAt ? "Vorn is planning this limit to a reset you added, ahead of the scheduled one."
                                     : "";
}

std::string whyNoRate(RateReading::Horizon horizon, const WindowKind& kind, bool usesActivity) {
    if (horizon == RateReading::Horizon::now) {
        return usesActivity ? "Too little was used on this computer to tell the pace of the last minutes."
                            : "Needs local activity, which is switched off.";
    }
    if (horizon == RateReading::Horizon::day && kind.isSession()) {
        return "A session is shorter than a day.";
    }
    return "Too little has been read in this time yet.";
}

std::string windowLine(const WindowAssessment& assessment, Instant now, bool isJudged) {
    return joined({assessment.window.kind.title() + " " + percent(assessment.window.usedPercent),
                   isJudged ? verdict(assessment, now) : "", shortResetText(assessment).text()});
}

std::string spokenWindow(const WindowAssessment& assessment, Instant now, bool isJudged) {
    const std::string title = assessment.window.kind.title() + ", ";
    const std::string used = percent(assessment.window.usedPercent) + " used, ";
    if (!isJudged) {
        return title + used + spokenReset(assessment, now);
    }
    std::string details = joined({spokenVerdict(assessment, now), spokenReset(assessment, now),
                                  paceText(assessment).text(), plannedResetNote(assessment)});
    return title + asciiLower(label(assessment.status)) + ", " + used + replaced(std::move(details), " · ", ", ");
}

}  // namespace vorn::Format
