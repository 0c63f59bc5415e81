#include "ui/views/sessions_left.hpp"

#include <utility>

#include "app/model/usage_model.hpp"
#include "ui/format/format.hpp"

namespace vorn {
namespace {

QString textOf(const UsageModel& model) {
    const auto& ratio = model.sessionWeekRatio();
    const WindowAssessment* const week = model.week();
    if (!ratio || !week) {
        return {};
    }
    // The unit stands below the number here.
    return QString::fromStdString(Format::sessionsLeft(ratio->sessionsLeft(week->window.usedPercent)))
        .section(u'×', 0, 0);
}

}  // namespace

SessionsLeftPresenter::SessionsLeftPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &SessionsLeftPresenter::update);
    update();
}

void SessionsLeftPresenter::update() {
    QString text = textOf(m_model);
    if (std::exchange(m_text, std::move(text)) != m_text) {
        emit changed();
    }
}

}  // namespace vorn
