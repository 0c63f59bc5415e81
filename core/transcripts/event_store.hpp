#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/data/activity/activity_event.hpp"
#include "core/transcripts/transcript_line.hpp"

namespace vorn {

/// The replies of the last days, each once: of the copies that are written while a reply streams, the one with the most
/// tokens. Takes about 80 bytes a reply. What it holds does not depend on the order in which replies are added.
class EventStore {
public:
    /// Where a reply was read. Of equal copies the one with the earlier origin is kept.
    struct Origin {
        std::uint32_t file = 0;
        std::uint32_t line = 0;                           ///< Counts the replies of the file.
        auto operator<=>(const Origin&) const = default;  // NOLINT(modernize-use-nullptr): sees one in the default
    };

    void add(const TranscriptReply& reply, Origin origin);
    void dropBefore(Instant cutoff);

    /// Whether anything was added, replaced or dropped since this was last asked.
    bool takeChanged();
    /// By time, then by origin.
    [[nodiscard]] std::vector<ActivityEvent> events();

private:
    using Index = std::uint32_t;
    static constexpr Index kNoRecord = 0xFFFF'FFFF;

    struct Record {
        ReplyKey key;
        Instant timestamp;
        std::array<std::uint32_t, 5> tokens;  ///< In the order of TokenCounts; `kMaximumTokens` fits.
        std::uint32_t model = 0;              ///< Index of a text.
        std::uint32_t cwd = 0;
        Origin origin;
        bool hasKey = false;
        bool isDropped = false;
    };

    Index& slotOf(const ReplyKey& key);
    void growTable();
    void compact();
    void sortTouched();
    std::uint32_t textIndex(std::string_view text);
    [[nodiscard]] bool isBefore(Index a, Index b) const;
    void assign(Record& record, const TranscriptReply& reply, Origin origin);

    std::deque<Record> m_records;  ///< A deque: growing copies nothing and leaves no slack.
    std::size_t m_droppedCount = 0;
    std::vector<Index> m_table;    ///< Hash table of the records with a key, a power of two, at most 3/4 full.
    std::vector<Index> m_sorted;   ///< The kept records by time, without the touched ones.
    std::vector<Index> m_touched;  ///< Added or replaced since the last sorting; may repeat.
    std::vector<SharedText> m_texts;
    std::unordered_map<std::string_view, std::uint32_t> m_textIndices;  ///< The keys point into `m_texts`.
    bool m_hasChanged = false;
};

}  // namespace vorn
