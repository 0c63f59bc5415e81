#include "ui/views/window_card_content.hpp"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr int kDaysOfWeek = 7;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

/// Percent as a share of the bar.
double share(std::optional<double> percent) {
    if (!percent || !std::isfinite(*percent)) {
        return -1;
    }
    return std::clamp(*percent / kLimitPercent, 0.0, 1.0);
}

QString resetText(const WindowAssessment& assessment, Instant now) {
    if (assessment.timeToReset && assessment.window.resetsAt) {
        return "Resets in " + leftToRight(Format::duration(*assessment.timeToReset)) + " · " +
               leftToRight(Format::clock(*assessment.window.resetsAt, now));
    }
    return assessment.window.usedPercent > 0 ? "Reset time not known" : "Begins with the next message";
}

QString rateText(const WindowAssessment& assessment) {
    if (!assessment.ratePerHour) {
        return "No rate yet";
    }
    const WindowKind& kind = assessment.window.kind;
    const char* const joint = assessment.rateBasis == RateBasis::localActivity ? " " : ", ";
    return leftToRight(Format::rate(*assessment.ratePerHour, kind)) + joint +
           text(Format::basis(assessment.rateBasis, kind));
}

QString paceText(const WindowAssessment& assessment) {
    const auto delta = assessment.paceDelta();
    return delta ? rateText(assessment) + " · " + text(Format::pace(*delta)) : rateText(assessment);
}

/// "1 hour 15 minutes": what "1h 15m" would be read out as is anybody's guess.
QString spokenDuration(Seconds time) {
    constexpr std::int64_t kHour = 60;  // in minutes, as all below
    constexpr std::int64_t kDay = 24 * kHour;
    constexpr double kLongest = 1e9;
    const std::int64_t minutes = std::llround(std::clamp(time / 1min, 0.0, kLongest));
    const auto counted = [](std::int64_t count, const char* unit) {
        return QString::number(count) + ' ' + unit + (count == 1 ? "" : "s");
    };
    if (minutes < 1) {
        return "less than a minute";
    }
    QStringList parts;
    if (minutes >= kDay) {
        parts << counted(minutes / kDay, "day");
    }
    if (minutes % kDay >= kHour) {
        parts << counted(minutes % kDay / kHour, "hour");
    }
    if (minutes < kDay && minutes % kHour > 0) {
        parts << counted(minutes % kHour, "minute");
    }
    return parts.join(' ');
}

QString spokenText(const WindowCardContent& card, const WindowAssessment& assessment, Instant now) {
    QString verdict = card.verdict;
    if (assessment.timeToLimit) {
        verdict.replace("~" + text(Format::duration(*assessment.timeToLimit)),
                        "about " + spokenDuration(*assessment.timeToLimit));
    }
    QString reset = card.reset;
    if (assessment.timeToReset && assessment.window.resetsAt) {
        reset = "resets in " + spokenDuration(*assessment.timeToReset) + ", at " +
                text(Format::clock(*assessment.window.resetsAt, now));
    }
    QStringList parts{verdict, reset, card.pace};
    if (!card.plannedReset.isEmpty()) {
        parts << card.plannedReset;
    }
    const QString details = parts.join(", ").replace(" · ", ", ");
    return QStringList{card.title, card.statusText.toLower(), card.usedText + " used", details}.join(", ");
}

}  // namespace

WindowCardContent windowCardContent(const WindowAssessment& assessment, Instant now) {
    const UsageWindow& window = assessment.window;
    WindowCardContent card{.kind = window.kind,
                           .title = text(window.kind.title()),
                           .status = StatusForViews::from(assessment.status),
                           .statusText = label(assessment.status),
                           .usedText = text(Format::percent(window.usedPercent)),
                           .used = std::max(0.0, share(window.usedPercent)),
                           .projected = share(assessment.projectedAtReset),
                           .evenPace = share(assessment.evenPacePercent),
                           .segments = window.kind.isSession() ? 1 : kDaysOfWeek,
                           .verdict = text(Format::verdict(assessment, now)),
                           .reset = resetText(assessment, now),
                           .pace = paceText(assessment)};
    if (assessment.timeToReset) {
        card.shortReset = "resets in " + leftToRight(Format::duration(*assessment.timeToReset));
    }
    if (assessment.plannedResetAt) {
        card.plannedReset = "Vorn is planning this limit to a reset you added, ahead of the scheduled one.";
    }
    card.spoken = spokenText(card, assessment, now);
    return card;
}

}  // namespace vorn
