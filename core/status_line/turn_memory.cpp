#include "core/status_line/turn_memory.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "core/support/file.hpp"
#include "core/support/member_text.hpp"
#include "core/support/stable_hash.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

/// As for the snapshot.
constexpr std::chrono::milliseconds kPatience{5};
constexpr std::size_t kMostSessions = 32;
constexpr std::uint64_t kTurnsBetweenCleaning = 16;  ///< Or thereabouts.

/// A line of the file: when, and hashes of the session and of what tells its turns apart.
struct Turn {
    std::int64_t at = 0;  ///< Milliseconds since 1970.
    std::uint64_t session = 0;
    std::uint64_t mark = 0;
};

std::int64_t milliseconds(Instant instant) {
    return static_cast<std::int64_t>(std::floor(secondsSince1970(instant) * 1000));
}

Turn turnOf(std::string_view input, Instant now) {
    Turn turn{.at = milliseconds(now), .session = stableHash(memberText(input, "session_id"))};
    turn.mark = stableHash(memberText(input, "rate_limits"));
    for (const std::string_view part :
         {memberText(input, "prompt_id"), memberText(memberText(input, "cost"), "total_api_duration_ms")}) {
        turn.mark = stableHash(part, stableHash("\n", turn.mark));
    }
    return turn;
}

template <typename Number>
bool take(std::string_view& line, Number& number, int base) {
    line.remove_prefix(line.starts_with(' ') ? 1 : 0);
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number, base);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return error == std::errc{};
}

/// Those of the file, but for what seems to come from the future: it was written before the clock was set back.
std::vector<Turn> readTurns(const fs::path& file, Instant now) {
    constexpr std::size_t kLargestFile = std::size_t{64} << 10U;
    const std::string content = readFile(file, kLargestFile).value_or("");
    std::vector<Turn> turns;
    for (std::string_view rest = content; !rest.empty();) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        Turn turn;
        if (take(line, turn.at, 10) && take(line, turn.session, 16) && take(line, turn.mark, 16) && line.empty() &&
            turn.at <= milliseconds(now)) {
            turns.push_back(turn);
        }
    }
    return turns;
}

TurnPlace placeAmong(const std::vector<Turn>& turns, const Turn& turn) {
    std::int64_t at = turn.at;
    bool isNew = true;
    std::int64_t others = 0;
    for (const Turn& known : turns) {
        if (known.session != turn.session) {
            others = std::max(others, known.at);
        } else if (known.mark == turn.mark) {
            at = known.at;
            isNew = false;
        }
    }
    return {.at = Instant{std::chrono::milliseconds{at}}, .isNew = isNew, .isLatest = others <= at};
}

void write(const fs::path& file, std::vector<Turn> turns, const Turn& turn) {
    std::erase_if(turns, [&](const Turn& known) { return known.session == turn.session; });
    turns.insert(turns.begin(), turn);
    std::ranges::stable_sort(turns, std::greater(), &Turn::at);
    turns.resize(std::min(turns.size(), kMostSessions));
    std::string content;
    for (const Turn& kept : turns) {
        char line[64];
        char* end = std::to_chars(std::begin(line), std::end(line), kept.at).ptr;
        for (const std::uint64_t hash : {kept.session, kept.mark}) {
            *end++ = ' ';
            end = std::to_chars(end, std::end(line), hash, 16).ptr;
        }
        content.append(std::begin(line), end) += '\n';
    }
    replaceFileUnflushed(file, content);
}

}  // namespace

TurnPlace placeTurn(const fs::path& file, std::string_view statusLineInput, Instant now) noexcept try {
    const Turn turn = turnOf(statusLineInput, now);
    TurnPlace place = placeAmong(readTurns(file, now), turn);
    if (!place.isNew) {
        return place;
    }
    createPrivateDirectories(file.parent_path());
    fs::path lockFile = file;
    if (const auto lock = FileLock::acquire(lockFile += ".lock", kPatience)) {
        const auto turns = readTurns(file, now);
        place = placeAmong(turns, turn);
        if (place.isNew) {
            // Looking through the folder takes a third of all the rest, and what lies there does no harm.
            if (turn.mark % kTurnsBetweenCleaning == 0) {
                removeAbandonedTemporaries(file);
            }
            write(file, turns, turn);
        }
    }
    return place;
} catch (...) {
    return {.at = now};
}

}  // namespace vorn
