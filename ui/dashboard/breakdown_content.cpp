#include "ui/dashboard/breakdown_content.hpp"

#include <algorithm>
#include <cmath>

#include "core/wording/activity_text.hpp"
#include "core/wording/format.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

constexpr std::size_t kMostProjects = 6;
constexpr std::size_t kMostModels = 4;
constexpr qsizetype kMostPrinted = 5;

/// The rest is recognised by its place: a project may be called "Other", too.
QVariantList ranked(const std::vector<ActivitySummary::Slice>& slices, std::size_t limit) {
    QVariantList shares;
    for (const auto& slice : slices) {
        shares << QVariant::fromValue(RankedShare{.name = QString::fromStdString(slice.name),
                                                  .share = slice.share,
                                                  .text = leftToRight(Format::percent(slice.share * kLimitPercent)),
                                                  .isRest = static_cast<std::size_t>(shares.size()) == limit});
    }
    return shares;
}

QVariantList ranked(const std::vector<UsageInsights::Share>& printed) {
    QVariantList shares;
    for (const auto& share : printed) {
        if (shares.size() == kMostPrinted) {
            const auto more = static_cast<qsizetype>(printed.size()) - kMostPrinted;
            shares << QVariant::fromValue(RankedShare{.name = QString("+%1 more").arg(more), .isRest = true});
            break;
        }
        const double part = std::isfinite(share.percent) ? share.percent / kLimitPercent : 0;
        shares << QVariant::fromValue(RankedShare{.name = QString::fromStdString(share.name),
                                                  .share = std::clamp(part, 0.0, 1.0),
                                                  .text = leftToRight(Format::percent(share.percent))});
    }
    return shares;
}

PrintedFinding split(const UsageInsights::Finding& finding) {
    const QString text = QString::fromStdString(Format::findingText(finding));
    const qsizetype dot = text.indexOf(" · ");
    return {.percent = leftToRight(Format::percent(finding.percent)),
            .title = dot < 0 ? text : text.left(dot).trimmed(),
            .detail = dot < 0 ? QString() : text.mid(dot + 3).trimmed()};
}

}  // namespace

MeasuredContent measuredContent(const Answer& answer, PeriodForViews::Period period) {
    MeasuredContent content{.period = period, .nothing = QString::fromStdString(Format::whyNoActivity(answer))};
    if (!content.nothing.isEmpty() || !answer.activity) {
        return content;
    }
    const Seconds span = lengthOf(period);
    content.projects = ranked(answer.activity->projects(answer.now - span, kMostProjects), kMostProjects);
    content.models = ranked(answer.activity->models(answer.now - span, kMostModels), kMostModels);
    if (content.projects.isEmpty()) {
        content.nothing = QString::fromStdString(Format::noReplies(span));
    }
    return content;
}

PrintedContent printedContent(const std::optional<UsageInsights>& insights, int period) {
    PrintedContent content;
    const UsageInsights::Period* shown = nullptr;
    if (insights && !insights->periods.empty()) {
        for (const auto& each : insights->periods) {
            content.periods << QString::fromStdString(each.label);
        }
        content.period = std::clamp(period, 0, static_cast<int>(insights->periods.size()) - 1);
        shown = &insights->periods[static_cast<std::size_t>(content.period)];
        for (const auto& finding : shown->findings) {
            content.findings << QVariant::fromValue(split(finding));
        }
        content.skills = ranked(shown->topSkills);
        content.subagents = ranked(shown->topSubagents);
    }
    content.heading =
        QString::fromStdString(Format::printedHeading(shown != nullptr ? *shown : UsageInsights::Period()));
    content.nothing = QString::fromStdString(Format::whyNothingPrinted(shown));
    return content;
}

}  // namespace vorn
