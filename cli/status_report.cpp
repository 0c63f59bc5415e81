#include "cli/status_report.hpp"

#include <utility>

#include "core/analysis/assess.hpp"
#include "core/analysis/history_index.hpp"
#include "core/analysis/steer.hpp"

namespace vorn::cli {
namespace {

/// Session points the ratio needs before it is worth telling.
constexpr double kMinimumSessionPoints = 20;

StatusReport::Card assessCard(const UsageWindow& window, const Readings& readings, const HistoryIndex& index,
                              Instant now) {
    const ActivitySummary* activity = readings.activity ? &*readings.activity : nullptr;
    const MatchingSamples history = index.matching(window);
    return {.assessment = VornEngine::assess(window, {.history = history,
                                                      .activity = activity,
                                                      .now = now,
                                                      .plannedResetAt = readings.plan.horizon(window, now)}),
            .rates = VornEngine::rates(window, history, activity, now)};
}

void noteNewestReading(StatusReport& report) {
    for (const auto& card : report.cards) {
        const UsageWindow& window = card.assessment.window;
        if (!report.observedAt || window.observedAt > *report.observedAt) {
            report.observedAt = window.observedAt;
            report.source = window.source;
        }
    }
}

void noteSessionsLeft(StatusReport& report) {
    for (const auto& card : report.cards) {
        if (report.ratio && card.assessment.window.kind == WindowKind::week()) {
            report.sessionsLeft = report.ratio->sessionsLeft(card.assessment.window.usedPercent);
        }
    }
}

}  // namespace

StatusReport analyse(Readings readings, Instant now, Detail detail) {
    StatusReport report{.now = now};
    const HistoryIndex index(readings.history);
    std::vector<WindowAssessment> assessments;
    for (const UsageWindow& window : readings.windows) {
        report.cards.push_back(assessCard(window, readings, index, now));
        assessments.push_back(report.cards.back().assessment);
    }
    report.headline = VornEngine::headline(assessments);
    // Every run stands for itself: there is no earlier choice of a window to stay with.
    report.steer = VornEngine::steer(assessments, std::nullopt, 0);
    report.head = Format::head(report.headline, report.steer, now);
    if (detail == Detail::full) {
        report.ratio = VornEngine::sessionWeekRatio(readings.history, kMinimumSessionPoints);
        noteSessionsLeft(report);
    }
    noteNewestReading(report);
    report.insights = std::move(readings.insights);
    report.plan = std::move(readings.plan);
    report.failure = std::move(readings.failure);
    report.isHistorySaved = readings.isHistorySaved;
    return report;
}

}  // namespace vorn::cli
