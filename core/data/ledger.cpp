#include "core/data/ledger.hpp"

#include <algorithm>
#include <utility>

#include "core/data/limit_names.hpp"

namespace vorn {
namespace {

/// As long a fall or an absence has to last before it is believed: readings of one moment share their mistakes.
constexpr Seconds kConfirmationDelay{60};
constexpr double kLimit = 100.0;  // percent

bool repeats(const UsageWindow& reading, const UsageWindow& held) {
    return reading.observedAt < held.observedAt ||
           (reading.observedAt == held.observedAt && reading.isSameInstance(held) &&
            reading.usedPercent == held.usedPercent);
}

bool isLargeFall(const UsageWindow& reading, const UsageWindow& held) {
    return held.usedPercent - reading.usedPercent >= UsageState::resetDrop;
}

/// Another reset time although the old one had not come, and no fall with it.
bool hasMoved(const UsageWindow& reading, const UsageWindow& held) {
    return reading.resetsAt && held.resetsAt && !sameReset(reading.resetsAt, held.resetsAt) &&
           reading.observedAt < *held.resetsAt && !isLargeFall(reading, held);
}

}  // namespace

std::vector<Ledger::Taken> Ledger::begin(std::span<const UsageWindow> known, Instant now) {
    m_hasBegun = true;
    const UsageState early = std::exchange(m_state, UsageState());
    m_state.setInsights(early.insights());
    std::vector<UsageWindow> before(known.begin(), known.end());
    std::ranges::stable_sort(before, {}, &UsageWindow::observedAt);
    for (UsageWindow& window : before) {
        window.kind = nameHeld(std::move(window.kind));
        m_state.merge(std::span(&window, 1));
    }
    std::vector<Taken> results;
    for (const Early& news : std::exchange(m_early, {})) {
        results.push_back(judge(news, now));
    }
    return results;
}

Ledger::Taken Ledger::takeAnswer(ClientAnswer answer, Instant now) {
    m_state.setInsights(std::move(answer.insights));
    giveNamesHeld(answer.windows);
    noteListed(answer);
    m_others = std::move(answer.others);
    m_lastAnswer = answer.windows;
    return take({.readings = std::move(answer.windows)}, now);
}

Ledger::Taken Ledger::takeSnapshot(std::vector<UsageWindow> readings, Instant now) {
    return take({.readings = std::move(readings)}, now);
}

Ledger::Taken Ledger::takeRecord(const ProbeRecord& record, std::set<WindowKind> announced, Instant now) {
    m_lastAnswer = record.readings;
    m_missing = record.missing;
    m_others = record.others;
    m_account = record.account;
    return take({.readings = believable(record.readings, now),
                 .drops = record.pendingDrops,
                 .announced = std::move(announced),
                 .isRecordedElsewhere = true},
                now);
}

bool Ledger::takeRefusals(std::span<const RefusedTurn> refusals, Instant now) {
    const auto before = std::exchange(m_refusals, {});
    for (RefusedTurn refusal : refusals) {
        refusal.kind = nameHeld(std::move(refusal.kind));
        const auto [known, isFirst] = m_refusals.try_emplace(refusal.kind, refusal);
        if (!isFirst && refusal.at > known->second.at) {
            known->second = refusal;
        }
    }
    std::erase_if(m_refusals, [&](const auto& entry) { return entry.second.end() <= now; });
    return m_refusals != before;
}

void Ledger::announce(const std::set<WindowKind>& kinds) {
    m_state.expectReset(std::vector(kinds.begin(), kinds.end()));
    if (!m_hasBegun) {
        m_early.push_back({.announced = kinds});
    }
}

Ledger::Taken Ledger::take(Early news, Instant now) {
    giveNamesHeld(news.readings);
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
    Taken taken{.isRecordedElsewhere = news.isRecordedElsewhere};
    for (const UsageWindow& reading : news.readings) {
        judgeOne(reading, taken);
    }
    taken.isMemoryChanged = m_state.expectingReset() != expected || m_state.pendingDrops() != drops;
    m_state.restorePendingDrops(news.drops);
    noteFalls(news.drops);
    m_state.expectReset(std::vector(news.announced.begin(), news.announced.end()));
    return taken;
}

void Ledger::judgeOne(const UsageWindow& reading, Taken& taken) {
    if (const auto found = m_state.windows().find(reading.kind); found != m_state.windows().end()) {
        const UsageWindow& held = found->second;
        const auto drop = m_state.pendingDrops().find(reading.kind);
        if (repeats(reading, held) || (drop != m_state.pendingDrops().end() && repeats(reading, drop->second))) {
            return;
        }
        if (hasMoved(reading, held)) {
            taken.moved.push_back({.event = Outcome::Event::moved,
                                   .kind = reading.kind,
                                   .at = reading.observedAt,
                                   .resetsAt = held.resetsAt,
                                   .nextResetsAt = reading.resetsAt,
                                   .usedPercent = held.usedPercent,
                                   .readAt = held.observedAt});
        }
        if (isConfirmed(reading, held)) {
            m_state.expectReset(std::span(&reading.kind, 1));
        }
    }
    m_state.merge(std::span(&reading, 1));
    noteFalls({});
    taken.toRecord.push_back(m_state.windows().at(reading.kind));
}

/// Whether an earlier look at the same fall stands behind this one.
bool Ledger::isConfirmed(const UsageWindow& reading, const UsageWindow& held) const {
    const auto fall = m_falls.find(reading.kind);
    if (fall == m_falls.end() || !reading.isSameInstance(held) || !isLargeFall(reading, held) ||
        !UsageState::isSameDrop(fall->second, reading)) {
        return false;
    }
    const UsageWindow& first = fall->second;
    return reading.source != first.source ? reading.observedAt > first.observedAt
                                          : reading.observedAt >= first.observedAt + kConfirmationDelay;
}

/// Keeps the first of several looks at one fall: a status line that tells of it every few seconds would else put off
/// the moment from which on it counts as confirmed.
void Ledger::noteFalls(std::span<const UsageWindow> seenElsewhere) {
    std::map<WindowKind, UsageWindow> falls;
    const auto takeFirst = [&](const UsageWindow& earlier, const UsageWindow& last) {
        if (UsageState::isSameDrop(earlier, last) && earlier.observedAt < falls.at(last.kind).observedAt) {
            falls.insert_or_assign(last.kind, earlier);
        }
    };
    for (const auto& [kind, last] : m_state.pendingDrops()) {
        falls.emplace(kind, last);
        if (const auto known = m_falls.find(kind); known != m_falls.end()) {
            takeFirst(known->second, last);
        }
        for (const UsageWindow& earlier : seenElsewhere) {
            takeFirst(earlier, last);
        }
    }
    m_falls = std::move(falls);
}

std::optional<Instant> Ledger::doubtsSince() const {
    std::optional<Instant> since;
    for (const auto& [kind, fall] : m_falls) {
        since = std::max(since, std::optional(fall.observedAt));
    }
    return since;
}

WindowKind Ledger::nameHeld(WindowKind kind) const {
    if (kind.which() != WindowKind::Case::weekModel) {
        return kind;
    }
    kind = canonical(std::move(kind));
    for (const auto& [held, window] : m_state.windows()) {
        if (isSameLimit(held, kind)) {
            return held;
        }
    }
    return kind;
}

void Ledger::giveNamesHeld(std::vector<UsageWindow>& readings) const {
    for (UsageWindow& reading : readings) {
        reading.kind = nameHeld(std::move(reading.kind));
    }
}

void Ledger::noteListed(const ClientAnswer& answer) {
    if (std::exchange(m_account, answer.account) != answer.account) {
        m_missing.clear();
    }
    for (const UsageWindow& window : answer.windows) {
        m_missing.erase(window.kind);
    }
    if (!answer.isComplete || answer.isStale()) {
        return;
    }
    for (const auto& [kind, held] : m_state.windows()) {
        const bool isListed = std::ranges::find(answer.windows, kind, &UsageWindow::kind) != answer.windows.end();
        if (!isListed && !kind.isSession()) {
            const ProbeRecord::Missing first{.since = answer.fetchedAt, .until = answer.fetchedAt};
            m_missing.try_emplace(kind, first).first->second.until = answer.fetchedAt;
        }
    }
}

bool Ledger::isGone(const UsageWindow& held) const {
    const auto found = m_missing.find(held.kind);
    return found != m_missing.end() && found->second.until - found->second.since >= kConfirmationDelay &&
           held.observedAt < found->second.until;
}

std::vector<UsageWindow> Ledger::windows(Instant now) const {
    std::vector<UsageWindow> all = m_state.current(now);
    std::erase_if(all, [&](const UsageWindow& window) { return isGone(m_state.windows().at(window.kind)); });
    for (const auto& [kind, refusal] : m_refusals) {
        if (const auto window = std::ranges::find(all, kind, &UsageWindow::kind); window != all.end()) {
            raise(*window, now);
        } else if (refusal.end() > now && !m_state.windows().contains(kind)) {
            all.push_back({kind, kLimit, refusal.resetsAt, refusal.at, DataSource::statusLine});
        }
    }
    std::ranges::sort(all, {}, &UsageWindow::kind);
    return all;
}

/// A refused turn says more than a share that was read before it, or that is rounded; a share that lies far below the
/// limit and is newer says that it is over.
void Ledger::raise(UsageWindow& window, Instant now) const {
    const RefusedTurn& refusal = m_refusals.at(window.kind);
    const bool isOver = window.observedAt > refusal.at && window.usedPercent <= kLimit - UsageState::resetDrop;
    const bool isOther = window.resetsAt && refusal.resetsAt && !sameReset(window.resetsAt, refusal.resetsAt) &&
                         window.observedAt > refusal.at;
    if (isOver || isOther || refusal.end() <= now || window.usedPercent >= kLimit) {
        return;
    }
    window.usedPercent = kLimit;
    window.resetsAt = refusal.resetsAt ? refusal.resetsAt : window.resetsAt;
    window.observedAt = std::max(window.observedAt, refusal.at);
}

void Ledger::remember(ProbeRecord& record) const {
    record.readings = m_lastAnswer;
    record.expectedResets = m_state.expectingReset();
    record.missing = m_missing;
    record.others = m_others;
    record.account = m_account;
    const auto before = std::exchange(record.pendingDrops, {});
    for (const auto& entry : m_falls) {
        const UsageWindow& fall = entry.second;
        const auto first = std::ranges::find_if(
            before, [&](const UsageWindow& earlier) { return UsageState::isSameDrop(earlier, fall); });
        record.pendingDrops.push_back(first != before.end() ? *first : fall);
    }
}

}  // namespace vorn
