#pragma once

#include <QObject>
#include <memory>
#include <optional>

#include <QtQml/qqmlregistration.h>

#include "ui/answer/freshness_content.hpp"
#include "ui/answer/head_content.hpp"
#include "ui/answer/other_limit.hpp"
#include "ui/charts/limit_panel_model.hpp"
#include "ui/dashboard/activity_content.hpp"
#include "ui/dashboard/breakdown_content.hpp"
#include "ui/dashboard/plan_editor.hpp"
#include "ui/dashboard/resets_content.hpp"
#include "ui/dashboard/session_week_content.hpp"

namespace vorn {

/// Everything that the dashboard shows, as long as it lives. A part that stays the same is not drawn again.
class DashboardPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::HeadContent head READ head NOTIFY headChanged FINAL)
    Q_PROPERTY(vorn::FreshnessContent freshness READ freshness NOTIFY freshnessChanged FINAL)
    Q_PROPERTY(vorn::LimitPanelModel* panels READ panels CONSTANT FINAL)
    Q_PROPERTY(QVariantList otherLimits READ otherLimits NOTIFY otherLimitsChanged FINAL)
    Q_PROPERTY(vorn::SessionWeekContent sessionWeek READ sessionWeek NOTIFY sessionWeekChanged FINAL)
    Q_PROPERTY(vorn::ResetsContent resets READ resets NOTIFY resetsChanged FINAL)
    Q_PROPERTY(vorn::PlanEditor* planEditor READ planEditor CONSTANT FINAL)
    Q_PROPERTY(vorn::ActivityContent activity READ activity NOTIFY activityChanged FINAL)
    Q_PROPERTY(vorn::MeasuredContent measured READ measured NOTIFY measuredChanged FINAL)
    Q_PROPERTY(vorn::PrintedContent printed READ printed NOTIFY printedChanged FINAL)

public:
    /// `model` must outlive it.
    explicit DashboardPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] const HeadContent& head() const { return m_head; }
    [[nodiscard]] const FreshnessContent& freshness() const { return m_freshness; }
    [[nodiscard]] LimitPanelModel* panels() { return &m_panels; }
    [[nodiscard]] const QVariantList& otherLimits() const { return m_otherLimits; }
    [[nodiscard]] const SessionWeekContent& sessionWeek() const { return m_sessionWeek; }
    [[nodiscard]] const ResetsContent& resets() const { return m_resets; }
    [[nodiscard]] PlanEditor* planEditor() { return &m_planEditor; }
    [[nodiscard]] const ActivityContent& activity() const { return m_activity; }
    [[nodiscard]] const MeasuredContent& measured() const { return m_measured; }
    [[nodiscard]] const PrintedContent& printed() const { return m_printed; }

    // What the user wants to see.
    Q_INVOKABLE void chooseActivity(vorn::PeriodForViews::Period period);
    Q_INVOKABLE void chooseMeasured(vorn::PeriodForViews::Period period);
    /// One of `printed.periods`.
    Q_INVOKABLE void choosePrinted(int period);

signals:
    void headChanged();
    void freshnessChanged();
    void otherLimitsChanged();
    void sessionWeekChanged();
    void resetsChanged();
    void activityChanged();
    void measuredChanged();
    void printedChanged();

private:
    /// What a part that takes long was formed from: the same of it gives the same content.
    struct Basis {
        std::shared_ptr<const ActivitySummary> activity;
        bool usesActivity = false;
        PeriodForViews::Period period{};
        double time = 0;  ///< Changes when the part moves on.
        bool operator==(const Basis&) const = default;
    };

    void update();
    void updateActivity();
    void updateMeasured();

    UsageModel& m_model;
    HeadContent m_head;
    FreshnessContent m_freshness;
    LimitPanelModel m_panels;
    QVariantList m_otherLimits;
    SessionWeekContent m_sessionWeek;
    ResetsContent m_resets;
    PlanEditor m_planEditor;
    ActivityContent m_activity;
    MeasuredContent m_measured;
    PrintedContent m_printed;

    PeriodForViews::Period m_activityPeriod = PeriodForViews::Day;
    PeriodForViews::Period m_measuredPeriod = PeriodForViews::FiveHours;
    int m_printedPeriod = 0;
    std::optional<Basis> m_activityBasis;
    std::optional<Basis> m_measuredBasis;
};

}  // namespace vorn
