#include "ui/charts/limit_chart_content.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/data/usage_state.hpp"
#include "core/wording/course_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/window_text.hpp"
#include "ui/charts/time_axis.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

using VornEngine::RatePoint;

/// Room over the limit for projections that pass it.
constexpr double kRaisedTop = 125;
/// A first reading this early, as a share of the window, is joined to the window's beginning at 0 %.
constexpr double kEarly = 0.1;

/// From which moment to which.
struct Frame {
    Instant begin;
    Instant end;
    [[nodiscard]] double x(Instant at) const { return (at - begin).count(); }
};

/// Of a window whose end is not known, what was read in its last length; nothing while it has not begun.
std::optional<Frame> frameOf(const LimitChartInput& input) {
    const UsageWindow& window = input.assessment.window;
    const Seconds length = window.kind.length();
    if (input.assessment.timeToReset && window.resetsAt) {
        return Frame{std::min(*window.resetsAt - length, input.now), *window.resetsAt};
    }
    return window.usedPercent > 0 ? std::optional(Frame{input.now - length, input.now}) : std::nullopt;
}

bool fell(const RatePoint& from, const RatePoint& to) {
    return from.value - to.value >= UsageState::resetDrop;
}

double drawn(double percent) {
    return std::clamp(percent, 0.0, kRaisedTop);
}

/// The readings within the frame, apart at early resets, with the latest one held up to now.
void addRuns(const LimitChartInput& input, const Frame& frame, LimitChartContent& chart) {
    const RatePoint* previous = nullptr;
    for (const RatePoint& point : input.readings) {
        if (point.time < frame.begin || point.time > input.now) {
            continue;
        }
        const double x = frame.x(point.time);
        if (previous == nullptr) {
            chart.runs.emplace_back().reserve(static_cast<qsizetype>(input.readings.size()));
            if (x > 0 && x < kEarly * chart.span && input.assessment.window.resetsAt) {
                chart.runs.back().append({0, 0});
            }
        } else if (fell(*previous, point)) {
            chart.runs.emplace_back();
            chart.marks.epochs.append(x);
        }
        chart.runs.back().append({x, drawn(point.value)});
        previous = &point;
    }
    if (chart.runs.empty()) {
        chart.runs.emplace_back();
    }
    chart.runs.back().append({chart.now, chart.used});
}

/// Nobody goes on at the limit, whatever the pace up to it was.
std::optional<double> projectionOf(const WindowAssessment& assessment) {
    return assessment.window.usedPercent < kLimitPercent ? assessment.projectedAtReset : std::nullopt;
}

void addProjection(const WindowAssessment& assessment, const Frame& frame, Instant now, LimitChartContent& chart) {
    const auto horizon = assessment.horizon();
    const auto projection = projectionOf(assessment);
    if (!horizon || !projection) {
        return;
    }
    const double projected = *projection;
    const double x = frame.x(*horizon);
    chart.isProjected = x > chart.now;
    chart.isBeyondTop = projected > chart.top;
    const double share = chart.isBeyondTop ? (chart.top - chart.used) / (projected - chart.used) : 1;
    chart.projectionEnd = {chart.now + share * (x - chart.now), std::min(projected, chart.top)};
    chart.projectionText = leftToRight(Format::percent(projected));
    if (assessment.timeToLimit) {
        const Instant at = now + *assessment.timeToLimit;
        chart.crossing = frame.x(at);
        chart.crossingText = leftToRight(Format::clock(at, now));
    }
}

void addFlags(const LimitChartInput& input, const Frame& frame, LimitChartContent& chart) {
    if (!input.assessment.timeToReset) {
        return;
    }
    for (const PlannedReset& planned : input.plan.planned) {
        if (planned.covers(input.assessment.window.kind) && planned.date > input.now && planned.date < frame.end) {
            chart.marks.flags.append(frame.x(planned.date));
        }
    }
}

}  // namespace

LimitChartContent limitChartContent(const LimitChartInput& input) {
    const WindowAssessment& assessment = input.assessment;
    LimitChartContent chart;
    chart.summary = QString::fromStdString(Format::spokenCourse(assessment, input.now));
    const auto frame = frameOf(input);
    if (!frame) {
        chart.emptyText = shownPhrase(Format::resetText(assessment, input.now));
        return chart;
    }
    chart.span = (frame->end - frame->begin).count();
    chart.now = frame->x(input.now);
    chart.top = projectionOf(assessment).value_or(0) > kLimitPercent ? kRaisedTop : kLimitPercent;
    chart.used = std::clamp(assessment.window.usedPercent, 0.0, chart.top);
    if (const auto horizon = assessment.horizon(); horizon && assessment.timeToReset) {
        chart.evenPaceEnd = frame->x(*horizon);
        chart.isCutShort = assessment.plannedResetAt.has_value();
    }
    addRuns(input, *frame, chart);
    addProjection(assessment, *frame, input.now, chart);
    addFlags(input, *frame, chart);
    TimeAxis axis = timeAxis(frame->begin, frame->end);
    chart.marks.ticks = std::move(axis.ticks);
    chart.marks.tickTexts = std::move(axis.texts);
    return chart;
}

std::optional<double> chartValue(const LimitChartContent& chart, double x) {
    if (x > chart.now) {
        if (!chart.isProjected || x > chart.projectionEnd.x()) {
            return std::nullopt;
        }
        const double share = (x - chart.now) / (chart.projectionEnd.x() - chart.now);
        return chart.used + share * (chart.projectionEnd.y() - chart.used);
    }
    for (auto run = chart.runs.rbegin(); run != chart.runs.rend(); ++run) {
        if (run->isEmpty() || run->first().x() > x) {
            continue;
        }
        const auto next = std::ranges::upper_bound(*run, x, {}, &QPointF::x);
        if (next == run->end()) {
            return run->last().y();
        }
        const QPointF& before = *(next - 1);
        const double share = (x - before.x()) / (next->x() - before.x());
        return before.y() + share * (next->y() - before.y());
    }
    return std::nullopt;
}

}  // namespace vorn
