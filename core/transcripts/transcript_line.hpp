#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <simdjson.h>

#include "core/data/activity/activity_event.hpp"
#include "core/data/refused_turn.hpp"

namespace vorn {

/// Tells replies apart: a hash of message id and request id, wide enough that two never meet by chance.
struct ReplyKey {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    bool operator==(const ReplyKey&) const = default;
};

/// What one transcript line says of a reply.
struct TranscriptReply {
    Instant timestamp;
    std::string_view model;  ///< Good until the next line is parsed, like `cwd`.
    std::string_view cwd;
    TokenCounts tokens;           ///< Each at most `kMaximumTokens`, at least one above 0.
    std::optional<ReplyKey> key;  ///< Empty when the line has neither id: it is then a reply of its own.
};

/// No reply has more tokens than this: a line that says so is damaged. Sums of such counts do not overflow.
inline constexpr std::int64_t kMaximumTokens = 0xFFFF'FFFF;

/// What a line is: something else, a reply, or what stands in the place of one that the service refused.
using TranscriptLine = std::variant<std::monostate, TranscriptReply, RefusedTurn>;

/// Reads transcript lines. Not for two threads at once.
class TranscriptLineParser {
public:
    /// This many bytes after a line must be readable; their values do not matter.
    static constexpr std::size_t kPadding = simdjson::SIMDJSON_PADDING;

    /// A reply has used tokens; a damaged line is something else. JSON null counts as an absent field, of two fields
    /// with one name the last counts, a wrong type spoils the line, and 12.0 is the whole number 12.
    TranscriptLine parse(std::string_view line);

private:
    simdjson::ondemand::parser m_parser;
    std::string m_key;
};

}  // namespace vorn
