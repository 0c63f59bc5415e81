#include "ui/answer/head_content.hpp"

#include <algorithm>

#include "core/wording/answer_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

/// The arrow with the factor, where it says more than the ring does.
QString factorText(const VornSteer& steer) {
    const std::string factor = Format::shortFactor(steer);
    const bool hasNumber = std::ranges::any_of(factor, [](char sign) { return sign >= '0' && sign <= '9'; });
    return hasNumber ? leftToRight(factor) : QString();
}

void showSteer(const VornSteer& steer, HeadContent& content) {
    content.factor = factorText(steer);
    const bool isStop = steer.direction() == VornSteer::Direction::stop;
    content.mark = isStop ? RingItem::Stop : RingItem::Arrow;
    content.angle = isStop ? 0 : steer.angleDegrees();
}

void showWindow(const WindowAssessment& assessment, HeadContent& content) {
    content.status = StatusForViews::from(assessment.status);
    content.used = assessment.window.usedPercent;
    content.segmented = !assessment.window.kind.isSession();
}

}  // namespace

HeadContent headContent(const Answer& answer) {
    HeadContent content{.headline = QString::fromStdString(Format::headline(answer))};
    if (const auto head = Format::head(answer)) {
        content.reason = QString::fromStdString(head->reason);
        showWindow(*answer.headAssessment(), content);
        if (head->steer) {
            showSteer(*head->steer, content);
        }
    }
    content.spoken = content.reason.isEmpty() ? content.headline : content.headline + ". " + content.reason + ".";
    return content;
}

}  // namespace vorn
