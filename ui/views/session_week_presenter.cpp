#include "ui/views/session_week_presenter.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/model/usage_model.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

/// More pips than this say nothing that the number does not.
constexpr double kMostPips = 60;

QString oneDecimal(double number) {
    return std::isfinite(number) ? leftToRight(QString::number(number, 'f', 1).toStdString()) : QStringLiteral("∞");
}

}  // namespace

SessionWeekPresenter::Content sessionWeekContent(const UsageModel& model) {
    const auto& ratio = model.sessionWeekRatio();
    if (!ratio || !std::isfinite(ratio->weekPointsPerSessionPoint)) {
        return {.waiting =
                    "Vorn compares how your session and week climb together. It needs about 20 points of session "
                    "use with week readings alongside; keep Vorn running."};
    }
    SessionWeekPresenter::Content content{
        .cost = leftToRight(oneDecimal(ratio->weekPercentPerSession()).toStdString() + "%") + " of week",
        .perWeek = oneDecimal(ratio->sessionsPerWeek()),
        .measured = QString("Measured on %1 session%2 (%3 session points) over the last 8 days.")
                        .arg(ratio->sessions)
                        .arg(ratio->sessions == 1 ? "" : "s")
                        .arg(ratio->sessionPoints, 0, 'f', 0)};
    const double perWeek = ratio->sessionsPerWeek();
    const bool canBeDrawn = perWeek > 0 && perWeek <= kMostPips;
    content.sessions = canBeDrawn ? perWeek : 0;
    if (const WindowAssessment* const week = model.week()) {
        content.left = oneDecimal(ratio->sessionsLeft(week->window.usedPercent));
        content.usedSessions = content.sessions * std::clamp(week->window.usedPercent / kLimitPercent, 0.0, 1.0);
    }
    return content;
}

SessionWeekPresenter::SessionWeekPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &SessionWeekPresenter::update);
    m_content = sessionWeekContent(model);
}

void SessionWeekPresenter::update() {
    auto content = sessionWeekContent(m_model);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
