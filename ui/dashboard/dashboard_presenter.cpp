#include "ui/dashboard/dashboard_presenter.hpp"

#include <cmath>
#include <utility>

#include "model/usage_model.hpp"

namespace vorn {
namespace {

/// How often what was measured is measured again without news; its window moves on slowly.
constexpr Seconds kSlide{300};

/// Whether it was another one.
template <typename Value>
bool replace(Value& value, Value next) {
    if (value == next) {
        return false;
    }
    value = std::move(next);
    return true;
}

}  // namespace

DashboardPresenter::DashboardPresenter(UsageModel& model, QObject* parent)
    : QObject(parent), m_model(model), m_planEditor(model) {
    connect(&model, &UsageModel::changed, this, &DashboardPresenter::update);
    update();
}

void DashboardPresenter::chooseActivity(PeriodForViews::Period period) {
    m_activityPeriod = period;
    updateActivity();
}

void DashboardPresenter::chooseMeasured(PeriodForViews::Period period) {
    m_measuredPeriod = period;
    updateMeasured();
}

void DashboardPresenter::choosePrinted(int period) {
    m_printedPeriod = period;
    update();
}

void DashboardPresenter::update() {
    const Answer& answer = m_model.answer();
    if (replace(m_head, headContent(answer))) {
        emit headChanged();
    }
    if (replace(m_freshness, freshnessContent(answer))) {
        emit freshnessChanged();
    }
    m_panels.show(answer);
    if (replace(m_otherLimits, vorn::otherLimits(answer))) {
        emit otherLimitsChanged();
    }
    if (replace(m_sessionWeek, sessionWeekContent(answer))) {
        emit sessionWeekChanged();
    }
    if (replace(m_resets, resetsContent(answer.plan, answer.now))) {
        emit resetsChanged();
    }
    if (replace(m_printed, printedContent(answer.insights, m_printedPeriod))) {
        emit printedChanged();
    }
    updateActivity();
    updateMeasured();
}

void DashboardPresenter::updateActivity() {
    const Answer& answer = m_model.answer();
    const Basis basis{.activity = answer.activity,
                      .usesActivity = answer.usesActivity,
                      .period = m_activityPeriod,
                      .time = secondsSince1970(activityEnd(m_activityPeriod, answer.now))};
    if (replace(m_activityBasis, std::optional(basis)) &&
        replace(m_activity, activityContent(answer, m_activityPeriod))) {
        emit activityChanged();
    }
}

void DashboardPresenter::updateMeasured() {
    const Answer& answer = m_model.answer();
    const Basis basis{.activity = answer.activity,
                      .usesActivity = answer.usesActivity,
                      .period = m_measuredPeriod,
                      .time = std::floor(secondsSince1970(answer.now) / kSlide.count())};
    if (replace(m_measuredBasis, std::optional(basis)) &&
        replace(m_measured, measuredContent(answer, m_measuredPeriod))) {
        emit measuredChanged();
    }
}

}  // namespace vorn
