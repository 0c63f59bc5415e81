#pragma once

#include <QVariantMap>

#include "ui/views/activity_presenter.hpp"
#include "ui/views/breakdown_presenter.hpp"
#include "ui/views/freshness_presenter.hpp"
#include "ui/views/limit_panel_model.hpp"
#include "ui/views/resets_presenter.hpp"
#include "ui/views/session_week_presenter.hpp"
#include "ui/views/steer_presenter.hpp"

namespace vorn {

/// Everything that the dashboard shows, for a window or a picture of one.
class DashboardContent {
public:
    /// `model` must outlive it.
    explicit DashboardContent(UsageModel& model);

    /// The view's initial properties; they point into this object.
    [[nodiscard]] QVariantMap properties();
    [[nodiscard]] const LimitPanelModel& panels() const { return m_panels; }

private:
    SteerPresenter m_steer;
    FreshnessPresenter m_freshness;
    LimitPanelModel m_panels;
    SessionWeekPresenter m_sessionWeek;
    ResetsPresenter m_resets;
    ActivityPresenter m_activity;
    BreakdownPresenter m_breakdown;
};

}  // namespace vorn
