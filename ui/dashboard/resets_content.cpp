#include "ui/dashboard/resets_content.hpp"

#include <algorithm>

#include "core/wording/plan_text.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

ResetRow rowOf(const PlannedReset& reset, Instant now) {
    const bool isPast = reset.date <= now;
    const std::string scope = Format::plannedScope(reset);
    const std::string detail = isPast ? Format::joined({scope, Format::plannedWhen(reset, now)}) : scope;
    return {.id = QString::fromStdString(reset.id),
            .when = shownPhrase(Format::plannedMoment(reset)),
            // A note from another program may have several lines.
            .detail = QString::fromStdString(detail).simplified(),
            .isPast = isPast};
}

}  // namespace

ResetsContent resetsContent(const ResetPlan& plan, Instant now) {
    ResetsContent content{.banked =
                              static_cast<int>(std::clamp<std::int64_t>(plan.banked, 0, ResetsContent::kMostBanked))};
    for (const PlannedReset& reset : plan.pruned(now).planned) {
        content.rows << QVariant::fromValue(rowOf(reset, now));
    }
    if (content.rows.isEmpty()) {
        content.nothing = QString::fromStdString(Format::nothingPlanned());
    }
    return content;
}

}  // namespace vorn
