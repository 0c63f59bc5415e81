#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/analysis/history_index.hpp"
#include "core/analysis/rate_reading.hpp"
#include "core/analysis/session_week_ratio.hpp"
#include "core/analysis/window_assessment.hpp"
#include "core/data/activity/activity_summary.hpp"
#include "core/data/other_limits.hpp"
#include "core/data/outcome.hpp"
#include "core/data/probe_failure.hpp"
#include "core/data/reset_plan.hpp"
#include "core/data/usage_insights.hpp"

namespace vorn {

/// How asking the client stands.
struct Asking {
    bool isRunning = false;
    bool hasAnswered = false;             ///< By now a source told something, if only that there are no limits.
    std::optional<Instant> lastAt;        ///< When the client was last asked to the end, in vain or not.
    std::optional<ProbeFailure> failure;  ///< Of that time.
    std::optional<Instant> retryAt;       ///< Not asked again before, since it failed or had nothing new.
    std::optional<Instant> figuresOf;     ///< When that answer's figures were true, where they were old.
    bool operator==(const Asking&) const = default;
};

/// What cannot be written, so that it is lost when the process ends.
struct Unsaved {
    bool history = false;
    std::string plan{};  ///< The system's reason; empty: all is saved.
    bool operator==(const Unsaved&) const = default;
};

/// Everything that an answer is formed from. What it points to must outlive the forming only.
struct Evidence {
    std::vector<UsageWindow> windows;       ///< As believed and as they stand now; by kind, each kind once.
    OtherLimits others{};                   ///< Limits that are no windows.
    std::vector<Outcome> moved{};           ///< Reset times that changed lately.
    const HistoryIndex* history = nullptr;  ///< Null: none.
    /// Null until the transcripts have been read. Summaries that are equal should be the same object.
    std::shared_ptr<const ActivitySummary> activity;
    bool useActivity = true;  ///< Whether rates may come from it; else it is only shown.
    ResetPlan plan;
    std::optional<SessionWeekRatio> ratio;
    std::optional<UsageInsights> insights;
    Asking asking;
    Unsaved unsaved;
    /// Whether what was known before has been taken into account. Until then figures may be shown, and nothing may be
    /// concluded from them.
    bool isJudged = true;
    bool isDemo = false;
    /// The window steered by in the answer before: it stays unless another is clearly tighter.
    std::optional<WindowKind> steeredBy;
};

/// What everything that people see is made from, in the terminal and in every window: values, no questions left.
struct Answer {
    struct Card {
        WindowAssessment assessment;
        std::vector<RateReading> rates;  ///< One for each horizon.
        MatchingSamples readings;        ///< The recorded ones of this instance of the window.
        bool operator==(const Card&) const = default;
    };

    /// What there is to show.
    enum class Stage : std::uint8_t {
        starting,  ///< nothing yet, and nothing failed
        failed,    ///< nothing, and asking failed: `asking.failure` tells why
        noLimits,  ///< a source answered, and there are no limits
        ready,     ///< at least one card
    };

    /// One sentence for the whole.
    struct Head {
        WindowKind kind;                 ///< The window it speaks of: one of the cards.
        std::optional<VornSteer> steer;  ///< What it advises; without one it is that window's verdict.
        bool operator==(const Head&) const = default;
    };

    Instant now;
    Stage stage = Stage::starting;
    bool isJudged = true;        ///< Else no verdict may be shown: cards hold figures alone, and there is no head.
    bool isDemo = false;         ///< Invented figures.
    std::vector<Card> cards;     ///< By kind.
    OtherLimits others;          ///< Limits that are no windows.
    std::vector<Outcome> moved;  ///< Reset times that changed lately.
    std::optional<WindowKind> urgent;  ///< The window that matters most now: the head may speak of another.
    std::optional<Head> head;
    std::optional<VornSteer> steer;         ///< Of all windows that are not limited.
    std::optional<SessionWeekRatio> ratio;  ///< Absent while there is too little to learn it from.
    std::optional<double> sessionsLeft;     ///< This week; absent while the ratio or the week is unknown.
    std::optional<UsageInsights> insights;  ///< What the client printed last.
    ResetPlan plan;
    std::optional<Instant> observedAt;  ///< When the newest reading was taken.
    std::optional<DataSource> source;   ///< Where that one came from.
    Asking asking;
    Unsaved unsaved;
    std::shared_ptr<const ActivitySummary> activity;  ///< Null until the transcripts have been read.
    bool usesActivity = true;                         ///< Whether rates may come from it.

    /// The assessment of that window; null when there is none. Valid as long as the answer.
    [[nodiscard]] const WindowAssessment* find(const WindowKind& kind) const;
    [[nodiscard]] const WindowAssessment* session() const { return find(WindowKind::session()); }
    [[nodiscard]] const WindowAssessment* week() const { return find(WindowKind::week()); }
    /// The window that `steer` speaks of.
    [[nodiscard]] const WindowAssessment* steerAssessment() const { return steer ? find(steer->kind) : nullptr; }
    /// The window that matters most.
    [[nodiscard]] const WindowAssessment* urgentAssessment() const { return urgent ? find(*urgent) : nullptr; }
    /// The window that the head speaks of.
    [[nodiscard]] const WindowAssessment* headAssessment() const { return head ? find(head->kind) : nullptr; }
    /// Since the session was read, this machine has used a point of it or more, or made many replies.
    [[nodiscard]] bool hasBurst() const;
    [[nodiscard]] std::vector<WindowAssessment> assessments() const;
    /// When the status line last told something that is still shown.
    [[nodiscard]] std::optional<Instant> lastObserved(DataSource source) const;

    bool operator==(const Answer&) const = default;
};

namespace VornEngine {

/// How much tighter another window has to be, as a share, before the advice turns to it.
inline constexpr double kSteerSwitchMargin = 0.1;
/// Session points that the ratio needs before it is worth telling.
inline constexpr double kMinimumSessionPoints = 20;

/// Each window assessed at `now`, in the order given. `activity`: null when no rate may come from it.
std::vector<WindowAssessment> assessAll(std::span<const UsageWindow> windows, const HistoryIndex& history,
                                        const ActivitySummary* activity, const ResetPlan& plan, Instant now);

/// The one place where readings become an answer.
Answer formAnswer(const Evidence& evidence, Instant now);

}  // namespace VornEngine
}  // namespace vorn
