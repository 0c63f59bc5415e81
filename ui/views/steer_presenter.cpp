#include "ui/views/steer_presenter.hpp"

#include <algorithm>
#include <utility>

#include "app/model/usage_model.hpp"
#include "ui/format/format.hpp"
#include "ui/views/head_window.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

/// The arrow with the factor, where it says more than the ring does.
QString factorText(const VornSteer& steer) {
    const std::string factor = Format::factor(steer);
    const bool hasNumber = std::ranges::any_of(factor, [](char sign) { return sign >= '0' && sign <= '9'; });
    return hasNumber ? leftToRight(factor) : QString();
}

void showSteer(const VornSteer& steer, SteerPresenter::Content& content) {
    content.factor = factorText(steer);
    const bool isStop = steer.direction() == VornSteer::Direction::stop;
    content.mark = isStop ? RingItem::Stop : RingItem::Arrow;
    content.angle = isStop ? 0 : steer.angleDegrees();
}

}  // namespace

SteerPresenter::Content steerContent(const UsageModel& model) {
    SteerPresenter::Content content;
    const auto head = headOf(model);
    const WindowAssessment* const window = headWindow(model);
    if (!head || !window) {
        return content;
    }
    content.headline = QString::fromStdString(head->headline);
    content.reason = QString::fromStdString(head->reason);
    content.status = StatusForViews::from(window->status);
    content.used = window->window.usedPercent;
    content.segmented = !window->window.kind.isSession();
    if (head->steer) {
        showSteer(*head->steer, content);
    }
    content.spoken = content.reason.isEmpty() ? content.headline : content.headline + ". " + content.reason + ".";
    return content;
}

SteerPresenter::SteerPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &SteerPresenter::update);
    update();
}

void SteerPresenter::update() {
    auto content = steerContent(m_model);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
