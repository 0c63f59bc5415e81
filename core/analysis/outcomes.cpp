#include "core/analysis/outcomes.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "core/data/limit_names.hpp"
#include "core/data/usage_state.hpp"

namespace vorn {
namespace {

using Event = Outcome::Event;

constexpr double kLimit = 100.0;  // percent

/// Follows one limit from reading to reading.
class Course {
public:
    Course(WindowKind kind, std::vector<Outcome>& told) : m_kind(std::move(kind)), m_told(told) {}

    void take(const HistorySample& sample) {
        if (!sample.resetsAt && m_last && m_last->resetsAt && sample.observedAt < *m_last->resetsAt) {
            return;  // a source that does not know the reset time
        }
        if (m_last) {
            compare(sample);
        }
        m_last = sample;
        if (sample.usedPercent >= kLimit && !std::exchange(m_isAtLimit, true)) {
            tell(Event::reachedLimit, sample.observedAt);
        }
    }

    void end(Instant now) {
        if (m_last && m_last->resetsAt && *m_last->resetsAt <= now) {
            tell(Event::landed, *m_last->resetsAt);
        }
    }

private:
    void compare(const HistorySample& sample) {
        const bool fell = m_last->usedPercent - sample.usedPercent >= UsageState::resetDrop;
        if (sameReset(m_last->resetsAt, sample.resetsAt)) {
            if (fell) {
                tell(Event::resetEarly, sample.observedAt);
                m_isAtLimit = false;
            }
            return;
        }
        if (m_last->resetsAt && sample.observedAt < *m_last->resetsAt) {
            tell(fell ? Event::resetEarly : Event::moved, sample.observedAt, sample.resetsAt);
            m_isAtLimit = m_isAtLimit && !fell;
            return;
        }
        end(sample.observedAt);
        m_isAtLimit = false;
    }

    void tell(Event event, Instant at, std::optional<Instant> next = {}) {
        m_told.push_back({.event = event,
                          .kind = m_kind,
                          .at = at,
                          .resetsAt = m_last->resetsAt,
                          .nextResetsAt = next,
                          .usedPercent = m_last->usedPercent,
                          .readAt = m_last->observedAt});
    }

    WindowKind m_kind;
    std::vector<Outcome>& m_told;
    std::optional<HistorySample> m_last;
    bool m_isAtLimit = false;
};

}  // namespace

std::vector<Outcome> VornEngine::outcomes(std::span<const HistorySample> history, Instant now) {
    std::vector<HistorySample> samples(history.begin(), history.end());
    std::erase_if(samples, [&](const HistorySample& sample) { return sample.observedAt > now; });
    std::ranges::stable_sort(samples, {}, &HistorySample::observedAt);
    std::vector<Outcome> told;
    std::map<std::string, Course> courses;
    for (const HistorySample& sample : samples) {
        if (const auto kind = sample.kind()) {
            const WindowKind name = canonical(*kind);
            courses.try_emplace(limitKey(name.key()), name, told).first->second.take(sample);
        }
    }
    for (auto& [key, course] : courses) {
        course.end(now);
    }
    std::ranges::stable_sort(told, {}, &Outcome::at);
    return told;
}

}  // namespace vorn
