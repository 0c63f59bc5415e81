#include "core/data/ledger.hpp"

#include <algorithm>
#include <utility>

namespace vorn {

std::vector<Ledger::Taken> Ledger::begin(std::span<const UsageWindow> known, Instant now) {
    m_hasBegun = true;
    const UsageState early = std::exchange(m_state, UsageState());
    m_state.setInsights(early.insights());
    m_state.merge(known);
    std::vector<Taken> results;
    for (const Early& news : std::exchange(m_early, {})) {
        results.push_back(judge(news, now));
    }
    return results;
}

Ledger::Taken Ledger::takeAnswer(ClientAnswer answer, Instant now) {
    m_state.setInsights(std::move(answer.insights));
    m_lastAnswer = answer.windows;
    return take({.readings = std::move(answer.windows)}, now);
}

Ledger::Taken Ledger::takeSnapshot(std::vector<UsageWindow> readings, Instant now) {
    return take({.readings = std::move(readings)}, now);
}

Ledger::Taken Ledger::takeRecord(const ProbeRecord& record, std::set<WindowKind> announced, Instant now) {
    m_lastAnswer = record.readings;
    return take({.readings = believable(record.readings, now),
                 .drops = record.pendingDrops,
                 .announced = std::move(announced),
                 .isRecordedElsewhere = true},
                now);
}

void Ledger::announce(const std::set<WindowKind>& kinds) {
    m_state.expectReset(std::vector(kinds.begin(), kinds.end()));
    if (!m_hasBegun) {
        m_early.push_back({.announced = kinds});
    }
}

Ledger::Taken Ledger::take(Early news, Instant now) {
    if (m_hasBegun) {
        return judge(news, now);
    }
    m_state.merge(news.readings);
    m_state.expectReset(std::vector(news.announced.begin(), news.announced.end()));
    m_early.push_back(std::move(news));
    return {};
}

Ledger::Taken Ledger::judge(const Early& news, Instant now) {
    m_state.noticeTime(now);
    const auto expected = m_state.expectingReset();
    const auto drops = m_state.pendingDrops();
    m_state.merge(news.readings);
    Taken taken{.isRecordedElsewhere = news.isRecordedElsewhere};
    for (const UsageWindow& window : news.readings) {
        taken.toRecord.push_back(m_state.windows().at(window.kind));
    }
    taken.isMemoryChanged = m_state.expectingReset() != expected || m_state.pendingDrops() != drops;
    m_state.restorePendingDrops(news.drops);
    m_state.expectReset(std::vector(news.announced.begin(), news.announced.end()));
    return taken;
}

void Ledger::remember(ProbeRecord& record) const {
    record.readings = m_lastAnswer;
    record.expectedResets = m_state.expectingReset();
    const auto before = std::exchange(record.pendingDrops, {});
    for (const auto& entry : m_state.pendingDrops()) {
        const UsageWindow& drop = entry.second;
        const auto first = std::ranges::find_if(
            before, [&](const UsageWindow& earlier) { return UsageState::isSameDrop(earlier, drop); });
        // The first of several looks at one fall stays: a status line that tells of it every few seconds would else
        // put off the moment from which on it counts as confirmed.
        record.pendingDrops.push_back(first != before.end() ? *first : drop);
    }
}

}  // namespace vorn
