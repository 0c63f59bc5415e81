#pragma once

#include <QObject>
#include <QSizeF>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"
#include "ui/answer/window_card_content.hpp"
#include "ui/charts/limit_chart_content.hpp"
#include "ui/charts/pace_content.hpp"
#include "ui/charts/thinned_points.hpp"

namespace vorn {

/// One window in the dashboard.
struct LimitPanelContent {
    WindowCardContent card;
    LimitChartContent chart;
    PaceContent pace;
    bool isTight = false;  ///< The one that the head speaks of.
    Instant begin;         ///< Of the chart.
    Instant now;
    bool operator==(const LimitPanelContent&) const = default;
};

/// `card`: one of the answer's.
LimitPanelContent limitPanelContent(const Answer& answer, const Answer::Card& card);

/// What a panel shows, as long as its window exists.
class LimitPanelPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::WindowCardContent card READ card NOTIFY changed FINAL)
    Q_PROPERTY(bool isTight READ isTight NOTIFY changed FINAL)
    Q_PROPERTY(vorn::LimitChartContent chart READ chart NOTIFY chartChanged FINAL)
    Q_PROPERTY(vorn::LimitChartMarks marks READ marks NOTIFY marksChanged FINAL)
    Q_PROPERTY(vorn::PaceContent pace READ pace NOTIFY paceChanged FINAL)

public:
    explicit LimitPanelPresenter(LimitPanelContent content, QObject* parent = nullptr);

    [[nodiscard]] const WindowCardContent& card() const { return m_content.card; }
    [[nodiscard]] bool isTight() const { return m_content.isTight; }
    [[nodiscard]] const LimitChartContent& chart() const { return m_content.chart; }
    [[nodiscard]] const LimitChartMarks& marks() const { return m_content.chart.marks; }
    [[nodiscard]] const PaceContent& pace() const { return m_content.pace; }
    /// `content`: of the same window as before.
    void setContent(LimitPanelContent content);

    /// How many lines the readings make: one more than there were early resets.
    Q_INVOKABLE int runCount() const;
    /// Line number `run` of the readings, as a plot of `plot` pixels can show it.
    Q_INVOKABLE QList<QPointF> line(int run, QSizeF plot) const;
    /// The outline of what lies under all lines of the readings.
    Q_INVOKABLE QList<QPointF> area(QSizeF plot) const;
    /// The line from now to where the projection ends; empty without one.
    Q_INVOKABLE QList<QPointF> projection(QSizeF plot) const;
    /// What the chart shows at `x`; negative where it shows nothing.
    Q_INVOKABLE double valueAt(double x) const;
    /// What the chart shows at `x`, in words: "Sat 16:46 · 46%".
    Q_INVOKABLE QString readout(double x) const;

signals:
    void changed();
    void chartChanged();
    void marksChanged();
    void paceChanged();

private:
    [[nodiscard]] PlotFrame frame(QSizeF plot) const;

    LimitPanelContent m_content;
};

}  // namespace vorn
