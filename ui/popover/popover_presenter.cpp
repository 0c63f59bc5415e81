#include "ui/popover/popover_presenter.hpp"

#include <utility>

#include "model/usage_model.hpp"

namespace vorn {

PopoverPresenter::PopoverPresenter(const UsageModel& model, QObject* parent) : QObject(parent) {
    connect(&model, &UsageModel::changed, this, [this, &model] { show(model.answer()); });
    show(model.answer());
}

void PopoverPresenter::show(const Answer& answer) {
    if (const auto head = headContent(answer); std::exchange(m_head, head) != head) {
        emit headChanged();
    }
    if (const auto freshness = freshnessContent(answer); std::exchange(m_freshness, freshness) != freshness) {
        emit freshnessChanged();
    }
    m_windows.setRows(windowRows(answer));
    if (const auto others = vorn::otherLimits(answer); std::exchange(m_otherLimits, others) != others) {
        emit otherLimitsChanged();
    }
}

}  // namespace vorn
