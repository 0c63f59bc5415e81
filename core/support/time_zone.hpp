#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "core/support/time.hpp"
#include "core/support/zone_offsets.hpp"

namespace vorn {

/// A day that every year has: "the last Sunday of October", "the 60th day".
struct YearlyDay {
    enum class Form : std::uint8_t {
        ofMonth,       ///< `number` is the weekday, 0 for Sunday, of `month` and `week` (5 for the last).
        ofYear,        ///< `number` counts from 0, a leap day included.
        ofCommonYear,  ///< `number` counts from 1, a leap day never counted.
    };
    Form form = Form::ofMonth;
    unsigned number = 0;
    unsigned month = 1;  ///< 1..12
    unsigned week = 1;   ///< 1..5
    Seconds time{};      ///< On the wall clock, since that day's midnight; may lie days before or after.
};

/// The offsets of a zone where every year is like the last.
struct YearlyOffsets {
    struct Summer {
        Seconds offset{};
        YearlyDay begin{};
        YearlyDay end{};
    };
    Seconds standard{};  ///< Added to UTC; positive to the east.
    std::optional<Summer> summer{};

    [[nodiscard]] Seconds offset(Instant instant) const;
};

/// How far the clocks of a place are ahead of UTC, at any time: the changes that are known, and a rule for what comes
/// after the last of them. A value that is cheap to copy.
class TimeZone {
public:
    /// UTC.
    TimeZone() = default;
    /// Without a rule, the last change holds for ever; before the first change, its offset does.
    explicit TimeZone(std::vector<ZoneOffsets::Change> changes, std::optional<YearlyOffsets> after = std::nullopt);

    /// Added to UTC; positive to the east.
    [[nodiscard]] Seconds offset(Instant instant) const;

    /// What a clock there shows, as if it were UTC; and the other way, the earlier one of two where the clock goes
    /// back, moved forward by the gap where it skips the time.
    [[nodiscard]] Instant shown(Instant instant) const { return instant + offset(instant); }
    [[nodiscard]] Instant whenShown(Instant shown) const;

private:
    struct Rules {
        ZoneOffsets changes;
        std::optional<Instant> last;  ///< Of the changes; absent when there are none.
        std::optional<YearlyOffsets> after;
    };
    std::shared_ptr<const Rules> m_rules;  ///< Null for UTC.
};

}  // namespace vorn
