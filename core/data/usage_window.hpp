#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>

#include <nlohmann/json_fwd.hpp>

#include "core/data/window_kind.hpp"
#include "core/support/date_coding.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// Where a reading came from.
enum class DataSource : std::uint8_t {
    usageCommand,  ///< the text printed by the usage command
    statusLine,    ///< a status-line snapshot written by the relay
};

/// "usageCommand", "statusLine": the form written in JSON.
const char* rawValue(DataSource source);

/// Two reset times closer than this name the same window instance: the sources round them differently.
inline constexpr Seconds kSameInstanceTolerance{300};

/// A time stamp further ahead of the clock than this comes from before the clock was set back.
inline constexpr Seconds kClockSlack{60};

/// Both reset times absent, or both present and less than `kSameInstanceTolerance` apart.
bool sameReset(std::optional<Instant> one, std::optional<Instant> other);

/// One reading of one limit.
struct UsageWindow {
    WindowKind kind;
    double usedPercent = 0;           ///< 0..100 as reported; neither clamped nor rounded.
    std::optional<Instant> resetsAt;  ///< When this instance ends; absent when the source did not say.
    Instant observedAt;               ///< When the reading was taken.
    DataSource source = DataSource::usageCommand;

    /// The same window read again, as opposed to a new one after a reset: same kind and `sameReset`.
    [[nodiscard]] bool isSameInstance(const UsageWindow& other) const;
    /// False while the reset time is unknown.
    [[nodiscard]] bool hasReset(Instant at) const { return resetsAt && at >= *resetsAt; }

    bool operator==(const UsageWindow&) const = default;
};

nlohmann::json encode(const UsageWindow& window, DateCoding dates);
/// Throws DecodingError.
UsageWindow decodeUsageWindow(const nlohmann::json& value, DateCoding dates);

/// For test failures.
void PrintTo(const UsageWindow& window, std::ostream* out);

}  // namespace vorn

template <>
struct std::hash<vorn::UsageWindow> {
    std::size_t operator()(const vorn::UsageWindow& window) const noexcept;
};
