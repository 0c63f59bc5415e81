#include "core/transcripts/event_store.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

namespace vorn {
namespace {

std::array<std::uint32_t, 5> pack(const TokenCounts& t) {
    const auto narrow = [](std::int64_t count) {
        return static_cast<std::uint32_t>(count);
    };
    return {narrow(t.input), narrow(t.output), narrow(t.cacheRead), narrow(t.cacheWrite5m), narrow(t.cacheWrite1h)};
}

TokenCounts unpack(const std::array<std::uint32_t, 5>& t) {
    return {.input = t[0], .output = t[1], .cacheRead = t[2], .cacheWrite5m = t[3], .cacheWrite1h = t[4]};
}

}  // namespace

void EventStore::add(const TranscriptReply& reply, Origin origin) {
    if (!reply.key) {
        m_touched.push_back(static_cast<Index>(m_records.size()));
        assign(m_records.emplace_back(), reply, origin);
        return;
    }
    if ((m_records.size() + 1) * 4 > m_table.size() * 3) {
        growTable();
    }
    Index& slot = slotOf(*reply.key);
    if (slot == kNoRecord) {
        slot = static_cast<Index>(m_records.size());
        m_records.emplace_back();
    } else {
        const Record& known = m_records[slot];
        const std::int64_t knownTotal = unpack(known.tokens).total();
        const std::int64_t total = reply.tokens.total();
        if (!known.isDropped && (total < knownTotal || (total == knownTotal && origin >= known.origin))) {
            return;
        }
        m_droppedCount -= known.isDropped ? 1 : 0;
    }
    m_touched.push_back(slot);
    assign(m_records[slot], reply, origin);
}

void EventStore::assign(Record& record, const TranscriptReply& reply, Origin origin) {
    record = {.key = reply.key.value_or(ReplyKey{}),
              .timestamp = reply.timestamp,
              .tokens = pack(reply.tokens),
              .model = textIndex(reply.model),
              .cwd = textIndex(reply.cwd),
              .origin = origin,
              .hasKey = reply.key.has_value()};
    m_hasChanged = true;
}

/// The place of the key in the table: its record's, or the free one where it belongs.
EventStore::Index& EventStore::slotOf(const ReplyKey& key) {
    const std::size_t mask = m_table.size() - 1;
    std::size_t at = key.low & mask;
    while (m_table[at] != kNoRecord && m_records[m_table[at]].key != key) {
        at = (at + 1) & mask;
    }
    return m_table[at];
}

void EventStore::growTable() {
    constexpr std::size_t kSmallest = 1024;
    m_table.assign(std::max(kSmallest, m_table.size() * 2), kNoRecord);
    for (Index i = 0; i < m_records.size(); ++i) {
        if (m_records[i].hasKey) {
            slotOf(m_records[i].key) = i;
        }
    }
}

std::uint32_t EventStore::textIndex(std::string_view text) {
    if (const auto known = m_textIndices.find(text); known != m_textIndices.end()) {
        return known->second;
    }
    const auto index = static_cast<std::uint32_t>(m_texts.size());
    m_texts.emplace_back(text);
    m_textIndices.emplace(m_texts.back(), index);
    return index;
}

bool EventStore::isBefore(Index a, Index b) const {
    const Record& left = m_records[a];
    const Record& right = m_records[b];
    return std::tie(left.timestamp, left.origin, a) < std::tie(right.timestamp, right.origin, b);
}

/// Merges the touched records into the sorted ones. New replies are mostly the newest, so that is a walk, not a sort.
void EventStore::sortTouched() {
    if (m_touched.empty()) {
        return;
    }
    std::ranges::sort(m_touched);
    m_touched.erase(std::unique(m_touched.begin(), m_touched.end()), m_touched.end());
    std::erase_if(m_sorted, [&](Index i) { return std::ranges::binary_search(m_touched, i); });
    const auto isBeforeThat = [this](Index a, Index b) {
        return isBefore(a, b);
    };
    std::ranges::sort(m_touched, isBeforeThat);
    const auto middle = static_cast<std::ptrdiff_t>(m_sorted.size());
    m_sorted.insert(m_sorted.end(), m_touched.begin(), m_touched.end());
    std::inplace_merge(m_sorted.begin(), m_sorted.begin() + middle, m_sorted.end(), isBeforeThat);
    std::vector<Index>().swap(m_touched);  // after a first scan it is large
}

void EventStore::dropBefore(Instant cutoff) {
    sortTouched();
    const auto isOld = [&](Index i) {
        return m_records[i].timestamp < cutoff;
    };
    const auto kept = std::ranges::partition_point(m_sorted, isOld);
    if (kept == m_sorted.begin()) {
        return;
    }
    for (auto old = m_sorted.begin(); old != kept; ++old) {
        m_records[*old].isDropped = true;
    }
    m_droppedCount += static_cast<std::size_t>(kept - m_sorted.begin());
    m_sorted.erase(m_sorted.begin(), kept);
    m_hasChanged = true;
    // A few replies leave the week with every scan: to clear them away each time would cost a walk over all.
    if (m_droppedCount > m_records.size() / 8) {
        compact();
    }
}

/// Frees the records that were dropped and the texts that only they had.
void EventStore::compact() {
    EventStore fresh;
    for (const Index i : m_sorted) {
        Record& record = fresh.m_records.emplace_back(m_records[i]);
        record.model = fresh.textIndex(m_texts[record.model]);
        record.cwd = fresh.textIndex(m_texts[record.cwd]);
    }
    fresh.m_sorted.resize(m_sorted.size());
    for (Index i = 0; i < fresh.m_sorted.size(); ++i) {
        fresh.m_sorted[i] = i;
    }
    while (fresh.m_records.size() * 4 > fresh.m_table.size() * 3) {
        fresh.growTable();
    }
    fresh.m_hasChanged = m_hasChanged;
    *this = std::move(fresh);
}

bool EventStore::takeChanged() {
    return std::exchange(m_hasChanged, false);
}

std::vector<ActivityEvent> EventStore::events() {
    sortTouched();
    std::vector<ActivityEvent> events;
    events.reserve(m_sorted.size());
    for (const Index i : m_sorted) {
        const Record& record = m_records[i];
        events.push_back({.timestamp = record.timestamp,
                          .model = m_texts[record.model],
                          .cwd = m_texts[record.cwd],
                          .tokens = unpack(record.tokens)});
    }
    return events;
}

}  // namespace vorn
