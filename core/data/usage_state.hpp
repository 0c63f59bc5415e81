#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "core/data/usage_insights.hpp"
#include "core/data/usage_window.hpp"

namespace vorn {

/// The readings of an earlier answer, kept from another run or by another program, that can still be true at `now`.
/// Readings of a clock that was ahead are left out. A window that is over stays while another one is not, so that a
/// session does not vanish at its reset but stands at nothing used.
std::vector<UsageWindow> believable(std::span<const UsageWindow> readings, Instant now);

/// The latest accepted reading of every limit, and the judgement what to believe when sources disagree.
class UsageState {
public:
    /// The smallest fall within one window instance that can be an early reset, in percentage points. Anything less is
    /// a stale reading.
    static constexpr double resetDrop = 10.0;

    /// Takes readings in, in the given order. An older reading never replaces a newer one, and within one window
    /// instance the used share falls only after a confirmed or announced reset.
    void merge(std::span<const UsageWindow> incoming);

    /// After the clock was set back: what was observed later than `now` and `kClockSlack` counts as observed now, so
    /// that it does not keep out new readings until the clock has caught up.
    void noticeTime(Instant now);

    /// The user announced an early reset: the next large fall of these kinds is believed at once.
    void expectReset(std::span<const WindowKind> kinds);
    /// Announced resets that have not been seen yet.
    [[nodiscard]] const std::set<WindowKind>& expectingReset() const { return m_expectingReset; }

    /// Falls that were seen once and are not believed yet, by kind: the low reading of each.
    [[nodiscard]] const std::map<WindowKind, UsageWindow>& pendingDrops() const { return m_pendingDrops; }
    /// Whether the later of two falls that nothing has confirmed is the earlier one, seen again.
    static bool isSameDrop(const UsageWindow& earlier, const UsageWindow& later);
    /// Takes in falls that another program saw: those that would still be falls, of limits without a known one.
    void restorePendingDrops(std::span<const UsageWindow> drops);

    /// Absent leaves the stored insights in place: output without a breakdown does not erase the last one.
    void setInsights(std::optional<UsageInsights> insights);
    [[nodiscard]] const std::optional<UsageInsights>& insights() const { return m_insights; }

    /// The accepted readings as they came, by kind.
    [[nodiscard]] const std::map<WindowKind, UsageWindow>& windows() const { return m_windows; }
    /// Every window as it stands at `now`, ordered by kind: one whose reset time has passed has used 0 and no reset
    /// time, even if no newer reading came.
    [[nodiscard]] std::vector<UsageWindow> current(Instant now) const;

    [[nodiscard]] std::optional<Instant> lastObservedAt() const;
    [[nodiscard]] std::optional<Instant> lastObserved(DataSource source) const;

    bool operator==(const UsageState&) const = default;

private:
    void mergeOne(const UsageWindow& incoming);
    bool acceptsDrop(const UsageWindow& incoming, const UsageWindow& stored);

    std::map<WindowKind, UsageWindow> m_windows;
    std::optional<UsageInsights> m_insights;
    std::map<WindowKind, UsageWindow> m_pendingDrops;  ///< Falls seen once and not yet believed.
    std::set<WindowKind> m_expectingReset;
};

}  // namespace vorn
