#include "core/data/usage_state.hpp"

#include <algorithm>
#include <iterator>

namespace vorn {
namespace {

/// A second low reading confirms a fall only this long after the first: the sources of one moment share their mistakes.
constexpr Seconds kConfirmationDelay{60};
/// How far the confirming reading may lie below the first low one, in percentage points.
constexpr double kConfirmationSlack = 3.0;

}  // namespace

std::vector<UsageWindow> believable(std::span<const UsageWindow> readings, Instant now) {
    std::vector<UsageWindow> answer;
    std::ranges::copy_if(readings, std::back_inserter(answer), [&](const UsageWindow& reading) {
        return reading.observedAt <= now && now - reading.observedAt < reading.kind.length();
    });
    const bool isOver = std::ranges::all_of(answer, [&](const UsageWindow& reading) { return reading.hasReset(now); });
    return isOver ? std::vector<UsageWindow>() : answer;
}

void UsageState::merge(std::span<const UsageWindow> incoming) {
    for (const UsageWindow& window : incoming) {
        mergeOne(window);
    }
}

void UsageState::mergeOne(const UsageWindow& incoming) {
    const auto [found, isFirst] = m_windows.try_emplace(incoming.kind, incoming);
    UsageWindow& stored = found->second;
    if (isFirst || stored.observedAt > incoming.observedAt) {
        return;
    }
    if (!incoming.isSameInstance(stored)) {
        m_pendingDrops.erase(incoming.kind);
        m_expectingReset.erase(incoming.kind);
        stored = incoming;
        return;
    }
    if (incoming.usedPercent >= stored.usedPercent) {
        m_pendingDrops.erase(incoming.kind);
        stored = incoming;
        return;
    }
    const double believed = acceptsDrop(incoming, stored) ? incoming.usedPercent : stored.usedPercent;
    stored = incoming;
    stored.usedPercent = believed;
}

bool UsageState::acceptsDrop(const UsageWindow& incoming, const UsageWindow& stored) {
    if (stored.usedPercent - incoming.usedPercent < resetDrop) {
        return false;
    }
    if (m_expectingReset.erase(incoming.kind) > 0) {
        m_pendingDrops.erase(incoming.kind);
        return true;
    }
    if (const auto pending = m_pendingDrops.find(incoming.kind); pending != m_pendingDrops.end()) {
        const UsageWindow& first = pending->second;
        if (first.observedAt + kConfirmationDelay <= incoming.observedAt &&
            incoming.usedPercent >= first.usedPercent - kConfirmationSlack) {
            m_pendingDrops.erase(pending);
            return true;
        }
    }
    m_pendingDrops.insert_or_assign(incoming.kind, incoming);
    return false;
}

void UsageState::noticeTime(Instant now) {
    for (auto& [kind, window] : m_windows) {
        if (window.observedAt > now + kClockSlack) {
            window.observedAt = now;
        }
    }
    std::erase_if(m_pendingDrops, [&](const auto& drop) { return drop.second.observedAt > now + kClockSlack; });
}

void UsageState::expectReset(std::span<const WindowKind> kinds) {
    m_expectingReset.insert(kinds.begin(), kinds.end());
}

void UsageState::restorePendingDrops(std::span<const UsageWindow> drops) {
    for (const UsageWindow& drop : drops) {
        const auto held = m_windows.find(drop.kind);
        if (held != m_windows.end() && drop.isSameInstance(held->second) &&
            drop.observedAt <= held->second.observedAt && held->second.usedPercent - drop.usedPercent >= resetDrop) {
            m_pendingDrops.try_emplace(drop.kind, drop);
        }
    }
}

bool UsageState::isSameDrop(const UsageWindow& earlier, const UsageWindow& later) {
    return earlier.isSameInstance(later) && earlier.observedAt <= later.observedAt &&
           later.usedPercent >= earlier.usedPercent - kConfirmationSlack;
}

void UsageState::setInsights(std::optional<UsageInsights> insights) {
    if (insights) {
        m_insights = std::move(insights);
    }
}

std::vector<UsageWindow> UsageState::current(Instant now) const {
    std::vector<UsageWindow> windows;
    for (const auto& [kind, stored] : m_windows) {
        windows.push_back(stored);
        if (stored.hasReset(now)) {
            windows.back().usedPercent = 0;
            windows.back().resetsAt.reset();
        }
    }
    return windows;
}

std::optional<Instant> UsageState::lastObservedAt() const {
    std::optional<Instant> latest;
    for (const auto& [kind, window] : m_windows) {
        latest = latest ? std::max(*latest, window.observedAt) : window.observedAt;
    }
    return latest;
}

std::optional<Instant> UsageState::lastObserved(DataSource source) const {
    std::optional<Instant> latest;
    for (const auto& [kind, window] : m_windows) {
        if (window.source == source) {
            latest = latest ? std::max(*latest, window.observedAt) : window.observedAt;
        }
    }
    return latest;
}

}  // namespace vorn
