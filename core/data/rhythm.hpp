#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/time.hpp"

namespace vorn {

/// When and how much somebody uses their plan: sums and no content. What a forecast knows beyond the readings of the
/// last days. `learn` (core/analysis) makes the next one of it; its size is bounded however long that goes on.
///
/// Sums fade, so that what was long ago counts less; all by the same share, so that their ratios stay means. Local use
/// from before the first reading is known in cost-weighted tokens only and is kept apart (`weight`), until readings
/// have told what a token costs.
struct Rhythm {
    static constexpr std::size_t kHours = 168;
    static constexpr std::size_t kMostDays = 63;     ///< Nine weeks.
    static constexpr std::size_t kMostRecent = 216;  ///< Nine days.
    static constexpr std::size_t kMostModels = 8;
    static constexpr std::size_t kLongestModelKey = 200;  ///< Bytes.

    /// An hour of the local week.
    struct Hour {
        double seen = 0;    ///< How often it was watched, faded.
        double points = 0;  ///< Points of the week limit used in it, faded.
        double weight = 0;  ///< Cost-weighted tokens in it before the first reading, faded.
        double active = 0;  ///< How often anything was used in it, faded.
        bool operator==(const Hour&) const = default;
    };
    /// A local day, not faded.
    struct Day {
        std::int64_t number = 0;  ///< Since 1970-01-01.
        double seenHours = 0;     ///< 0..25
        double points = 0;
        double weight = 0;
        bool operator==(const Day&) const = default;
    };
    /// A local hour in which something was used.
    struct RecentHour {
        std::int64_t number = 0;  ///< As `ZoneOffsets::hour` counts.
        double points = 0;        ///< Of the week limit.
        bool operator==(const RecentHour&) const = default;
    };
    /// The newest reading of a limit that was learnt from.
    struct Reading {
        double usedPercent = 0;
        Instant resetsAt;
        Instant observedAt;
        bool operator==(const Reading&) const = default;
    };
    /// Past sessions, the last dozen or so.
    struct Sessions {
        double count = 0;   ///< Faded.
        double landed = 0;  ///< Used percent at their ends.
        double full = 0;    ///< How many reached the limit.
        bool operator==(const Sessions&) const = default;
    };
    /// What one thing costs in terms of another, faded.
    struct Exchange {
        double sessionPoints = 0;
        double weekPoints = 0;       ///< In the same time.
        double localPoints = 0;      ///< Session points while this machine did something…
        double localWeight = 0;      ///< …and the cost-weighted tokens of that.
        double elsewherePoints = 0;  ///< Session points while this machine did nothing.
        bool operator==(const Exchange&) const = default;
    };
    /// A model's week limit beside the week limit.
    struct Model {
        double points = 0;      ///< Of the model's limit, faded.
        double weekPoints = 0;  ///< Of the week limit in the same time, faded.
        std::optional<Reading> last;
        bool operator==(const Model&) const = default;
    };

    std::array<Hour, kHours> hours{};
    std::vector<Day> days;           ///< By number; at most `kMostDays`.
    std::vector<RecentHour> recent;  ///< By number; at most `kMostRecent`.
    Sessions sessions;
    Exchange exchange;
    std::map<std::string, Model> models;  ///< By the key of their kind; at most `kMostModels`.
    double fullWeeks = 0;                 ///< Weeks that reached the limit, faded by week…
    double weeks = 0;                     ///< …of so many.
    double weekPointsWatched = 0;         ///< Week points since the first reading, faded…
    double weightWatched = 0;             ///< …and cost-weighted tokens in the same time.
    double weightBefore = 0;              ///< Cost-weighted tokens before the first reading, not faded…
    double hoursBefore = 0;               ///< …and the hours since the first of them.
    std::optional<Reading> session;
    std::optional<Reading> week;
    std::optional<Instant> firstReadAt;    ///< The first reading ever.
    std::optional<Instant> firstKnownAt;   ///< The first reading, or the first local activity before it.
    std::optional<Instant> learntUpTo;     ///< Later readings are still to be learnt.
    std::optional<std::int64_t> seenUpTo;  ///< The local hour that comes next to be counted as seen.
    bool operator==(const Rhythm&) const = default;
};

/// One JSON document of a few kilobytes, numbers with six digits.
std::string encodeRhythm(const Rhythm& rhythm);
/// What is damaged is left out, or all of it where nothing is certain: a part that is missing is learnt again. Never
/// larger than `Rhythm` may be, every number finite and none below 0 that cannot be.
Rhythm decodeRhythm(std::string_view document);

/// For test failures.
void PrintTo(const Rhythm& rhythm, std::ostream* out);

}  // namespace vorn
