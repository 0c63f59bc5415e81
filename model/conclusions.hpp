#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/analysis/answer.hpp"

namespace vorn {

class ActivityKeeper;
class PlanKeeper;
class Readings;

/// What follows from everything that was read, kept from one time to the next: advice stays with a window unless
/// another is clearly tighter, and the ratio walks the whole history, so that it is formed only when that has grown.
class Conclusions {
public:
    /// What the conclusions are drawn from.
    struct Basis {
        Readings& readings;
        const ActivityKeeper& activity;
        const PlanKeeper& plan;
        bool useActivity = true;  ///< Whether rates may come from local activity, as the user chose.
        bool mayJudge = true;     ///< Nothing that matters is still being read for the first time.
        bool isDemo = false;
        Asking asking{};
    };
    void draw(const Basis& basis, Instant now);
    /// The client is being asked or no longer is; nothing else has changed.
    void noteAsking(bool isRunning) { m_answer.asking.isRunning = isRunning; }

    /// What people see.
    [[nodiscard]] const Answer& answer() const { return m_answer; }

    // The plain computation on whatever is held, judged or not.
    [[nodiscard]] const std::vector<WindowAssessment>& assessments() const { return m_assessments; }
    [[nodiscard]] const std::optional<VornSteer>& steer() const { return m_steer; }
    [[nodiscard]] const std::optional<SessionWeekRatio>& ratio() const { return m_ratio; }
    /// The assessment of a window; null when there is none, valid until the next `draw`.
    [[nodiscard]] const WindowAssessment* find(const WindowKind& kind) const;

private:
    void updateRatio(const std::vector<HistorySample>& history);

    Answer m_answer;
    std::vector<WindowAssessment> m_assessments;
    std::optional<VornSteer> m_steer;
    std::optional<SessionWeekRatio> m_ratio;
    std::size_t m_ratioHistoryCount = 0;  ///< How many samples the ratio was last formed from.
};

}  // namespace vorn
