#include "ui/charts/limit_panel.hpp"

#include <array>
#include <utility>

#include "core/wording/format.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {

LimitPanelContent limitPanelContent(const Answer& answer, const Answer::Card& card) {
    const WindowAssessment& assessment = card.assessment;
    LimitPanelContent content{
        .card = windowCardContent(assessment, answer.isJudged, answer.now),
        .chart = limitChartContent(
            {.assessment = assessment, .readings = card.readings.points(), .plan = answer.plan, .now = answer.now}),
        .pace = paceContent(assessment, card.rates, answer.usesActivity, answer.now),
        .isTight = answer.head && answer.head->kind == assessment.window.kind,
        .now = answer.now};
    content.begin = answer.now - Seconds(content.chart.now);
    return content;
}

LimitPanelPresenter::LimitPanelPresenter(LimitPanelContent content, QObject* parent)
    : QObject(parent), m_content(std::move(content)) {}

void LimitPanelPresenter::setContent(LimitPanelContent content) {
    const LimitPanelContent before = std::exchange(m_content, std::move(content));
    // Time alone moves the chart at each recomputation, and little else.
    if (before.card != m_content.card || before.isTight != m_content.isTight) {
        emit changed();
    }
    if (before.chart.marks != marks()) {
        emit marksChanged();
    }
    if (before.chart != chart()) {
        emit chartChanged();
    }
    if (before.pace != pace()) {
        emit paceChanged();
    }
}

int LimitPanelPresenter::runCount() const {
    return static_cast<int>(m_content.chart.runs.size());
}

QList<QPointF> LimitPanelPresenter::line(int run, QSizeF plot) const {
    if (run < 0 || run >= runCount()) {
        return {};
    }
    return thinnedPoints(m_content.chart.runs[static_cast<std::size_t>(run)], frame(plot));
}

QList<QPointF> LimitPanelPresenter::area(QSizeF plot) const {
    QList<QPointF> outline;
    for (int run = 0; run < runCount(); ++run) {
        const QList<QPointF> points = line(run, plot);
        if (points.isEmpty()) {
            continue;
        }
        outline.append({points.first().x(), 0});
        outline += points;
        outline.append({points.last().x(), 0});
    }
    return outline;
}

QList<QPointF> LimitPanelPresenter::projection(QSizeF plot) const {
    if (!chart().isProjected) {
        return {};
    }
    return thinnedPoints(std::array{QPointF(chart().now, chart().used), chart().projectionEnd}, frame(plot));
}

PlotFrame LimitPanelPresenter::frame(QSizeF plot) const {
    return {.from = 0, .to = chart().span, .top = chart().top, .pixels = plot};
}

double LimitPanelPresenter::valueAt(double x) const {
    return chartValue(m_content.chart, x).value_or(-1);
}

QString LimitPanelPresenter::readout(double x) const {
    const auto value = chartValue(m_content.chart, x);
    const QString time = leftToRight(Format::clock(m_content.begin + Seconds(x), m_content.now));
    return value ? time + " · " + leftToRight(Format::percent(*value)) : time;
}

}  // namespace vorn
