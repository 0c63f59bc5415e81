#include "core/support/zone_file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vorn {
namespace {

using namespace std::chrono_literals;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Takes the parts of a rule off its front.
class RuleReader {
public:
    explicit RuleReader(std::string_view rule) : m_rest(rule) {}

    [[nodiscard]] bool isAtEnd() const { return m_rest.empty(); }
    [[nodiscard]] bool isNext(char c) const { return m_rest.starts_with(c); }

    bool accept(char wanted) {
        const bool found = isNext(wanted);
        m_rest.remove_prefix(found ? 1 : 0);
        return found;
    }

    /// "CET", or what is not only letters in brackets: "<+0530>".
    bool name() {
        const bool isQuoted = accept('<');
        std::size_t length = 0;
        while (length < m_rest.size() && (isLetter(m_rest[length]) || (isQuoted && m_rest[length] != '>'))) {
            ++length;
        }
        m_rest.remove_prefix(length);
        constexpr std::size_t kShortest = 3;
        return isQuoted ? accept('>') : length >= kShortest;
    }

    std::optional<unsigned> number(unsigned least, unsigned most) {
        std::size_t length = 0;
        unsigned value = 0;
        for (; length < m_rest.size() && isDigit(m_rest[length]) && value <= most; ++length) {
            value = value * 10 + static_cast<unsigned>(m_rest[length] - '0');
        }
        m_rest.remove_prefix(length);
        return length > 0 && value >= least && value <= most ? std::optional(value) : std::nullopt;
    }

    /// "5", "-5:30", "+1:02:03".
    std::optional<Seconds> time(unsigned mostHours) {
        const double sign = accept('-') ? -1 : 1;
        if (sign > 0) {
            accept('+');
        }
        const auto hours = number(0, mostHours);
        const auto minutes = accept(':') ? number(0, 59) : 0;
        const auto seconds = minutes && accept(':') ? number(0, 59) : 0;
        if (!hours || !minutes || !seconds) {
            return std::nullopt;
        }
        return sign * (*hours * 1h + *minutes * 1min + *seconds * Seconds{1});
    }

    /// "M10.5.0/3", "J60", "59/-1": the day, and the time of day when it is not two o'clock.
    std::optional<YearlyDay> day() {
        YearlyDay day{.time = 2h};
        std::optional<unsigned> number;
        if (accept('M')) {
            const auto month = this->number(1, 12);
            const auto week = accept('.') ? this->number(1, 5) : std::nullopt;
            number = accept('.') ? this->number(0, 6) : std::nullopt;
            day.month = month.value_or(0);
            day.week = week.value_or(0);
        } else {
            day.form = accept('J') ? YearlyDay::Form::ofCommonYear : YearlyDay::Form::ofYear;
            number = day.form == YearlyDay::Form::ofYear ? this->number(0, 365) : this->number(1, 365);
        }
        constexpr unsigned kMostHours = 167;
        const auto time = accept('/') ? this->time(kMostHours) : day.time;
        if (!number || !time || day.month == 0 || day.week == 0) {
            return std::nullopt;
        }
        day.number = *number;
        day.time = *time;
        return day;
    }

private:
    std::string_view m_rest;
};

std::optional<YearlyOffsets> readRule(std::string_view rule) {
    constexpr unsigned kMostHours = 24;
    RuleReader reader(rule);
    const auto standard = reader.name() ? reader.time(kMostHours) : std::nullopt;
    if (!standard) {
        return std::nullopt;
    }
    YearlyOffsets offsets{.standard = -*standard};  // POSIX counts to the west
    if (reader.isAtEnd()) {
        return offsets;
    }
    YearlyOffsets::Summer summer{.offset = offsets.standard + 1h,
                                 .begin = {.number = 0, .month = 3, .week = 2, .time = 2h},
                                 .end = {.number = 0, .month = 11, .week = 1, .time = 2h}};
    if (!reader.name()) {
        return std::nullopt;
    }
    if (!reader.isAtEnd() && !reader.isNext(',')) {
        const auto offset = reader.time(kMostHours);
        if (!offset) {
            return std::nullopt;
        }
        summer.offset = -*offset;
    }
    if (reader.accept(',')) {
        const auto begin = reader.day();
        const auto end = begin && reader.accept(',') ? reader.day() : std::nullopt;
        if (!end) {
            return std::nullopt;
        }
        summer.begin = *begin;
        summer.end = *end;
    }
    offsets.summer = summer;
    return reader.isAtEnd() ? std::optional(offsets) : std::nullopt;
}

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

/// One of the up to two blocks of a zone file, and where it ends.
struct Block {
    static constexpr std::size_t kHeader = 44;
    static constexpr std::size_t kType = 6;  ///< Offset (4 bytes), whether it is summer, index of the name.

    std::size_t timeSize = 4;  ///< Bytes of an instant: 8 in the second block.
    std::size_t times = 0;
    std::size_t types = 0;
    std::size_t end = 0;
    char version = 0;
    std::string_view body{};

    static std::optional<Block> read(std::string_view content, std::size_t timeSize) {
        constexpr std::string_view kMagic = "TZif";
        if (content.size() < kHeader || !content.starts_with(kMagic)) {
            return std::nullopt;
        }
        const auto count = [&](std::size_t index) {
            constexpr std::size_t kCounts = 20;
            return static_cast<std::size_t>(bigEndian(content.substr(kCounts + 4 * index, 4)));
        };
        Block block{.timeSize = timeSize, .times = count(3), .types = count(4), .version = content[kMagic.size()]};
        const std::size_t isUtc = count(0);
        const std::size_t isStandard = count(1);
        const std::size_t leaps = count(2);
        const std::size_t names = count(5);
        // None of them alone may be too large either, or their sum could overflow.
        if (block.types == 0 ||
            std::max({isUtc, isStandard, leaps, names, block.times, block.types}) > content.size()) {
            return std::nullopt;
        }
        block.end = kHeader + block.times * (timeSize + 1) + block.types * kType + names + leaps * (timeSize + 4) +
                    isStandard + isUtc;
        if (block.end > content.size()) {
            return std::nullopt;
        }
        block.body = content.substr(kHeader, block.end - kHeader);
        return block;
    }

    /// Empty when there is no such type, or none that clocks could show.
    [[nodiscard]] std::optional<Seconds> offset(std::size_t type) const {
        constexpr std::int32_t kFurthest = 26 * 3600;
        if (type >= types) {
            return std::nullopt;
        }
        const auto bytes = body.substr(times * (timeSize + 1) + type * kType, 4);
        const auto seconds = static_cast<std::int32_t>(bigEndian(bytes));
        return seconds > -kFurthest && seconds < kFurthest ? std::optional(Seconds{seconds}) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::vector<ZoneOffsets::Change>> changes() const {
        const auto first = offset(0);
        if (!first) {
            return std::nullopt;
        }
        // Before the first change the first type holds.
        constexpr Instant kLongAgo = instantSince1970(-1e19);
        std::vector<ZoneOffsets::Change> changes = {{kLongAgo, *first}};
        for (std::size_t i = 0; i < times; ++i) {
            const std::uint64_t time = bigEndian(body.substr(i * timeSize, timeSize));
            const auto seconds = timeSize == 4 ? static_cast<std::int32_t>(time) : static_cast<std::int64_t>(time);
            const auto next = offset(static_cast<unsigned char>(body[times * timeSize + i]));
            const Instant from = instantSince1970(static_cast<double>(seconds));
            if (!next || (i > 0 && from <= changes.back().from)) {
                return std::nullopt;
            }
            changes.push_back({from, *next});
        }
        return changes;
    }
};

}  // namespace

std::optional<TimeZone> readZoneRule(std::string_view rule) {
    const auto offsets = readRule(rule);
    return offsets ? std::optional(TimeZone({}, offsets)) : std::nullopt;
}

std::optional<TimeZone> readZoneFile(std::string_view content) {
    auto block = Block::read(content, 4);
    std::optional<YearlyOffsets> after;
    if (block && block->version != 0) {
        // The first block is for readers that know only 32 bits; the second has all, and the rule after it.
        content.remove_prefix(block->end);
        block = Block::read(content, 8);
        const std::string_view rule = block ? content.substr(block->end) : std::string_view();
        const auto end = rule.find('\n', 1);
        if (!rule.starts_with('\n') || end == std::string_view::npos) {
            return std::nullopt;
        }
        after = readRule(rule.substr(1, end - 1));
        if (!after && end > 1) {
            return std::nullopt;
        }
    }
    auto changes = block ? block->changes() : std::nullopt;
    return changes ? std::optional(TimeZone(*std::move(changes), after)) : std::nullopt;
}

}  // namespace vorn
