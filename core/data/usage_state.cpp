#include "core/data/usage_state.hpp"

#include <algorithm>

namespace vorn {
namespace {

/// A second low reading confirms a fall only this long after the first: the sources of one moment share their mistakes.
constexpr Seconds kConfirmationDelay{60};
/// How far the confirming reading may lie below the first low one, in percentage points.
constexpr double kConfirmationSlack = 3.0;

}  // namespace

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

void UsageState::expectReset(std::span<const WindowKind> kinds) {
    m_expectingReset.insert(kinds.begin(), kinds.end());
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
