#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "core/support/time.hpp"

namespace vorn {

/// A limit that is neither the session nor a week, like a gateway's spend limit: shown as it was read, without a pace,
/// a verdict or a history.
struct OtherLimit {
    std::string name;              ///< For people: "Spend limit", "Five hour opus".
    double usedPercent = 0;        ///< As reported; neither clamped nor rounded.
    std::optional<double> used{};  ///< In the unit of `cap`, where the source says it.
    std::optional<double> cap{};
    std::optional<Instant> resetsAt{};
    Instant observedAt;  ///< When it was true.
    bool operator==(const OtherLimit&) const = default;
};

/// What may be used beyond the plan's limits and is paid for by the month.
struct Credits {
    bool isEnabled = false;
    double spent = 0;                     ///< In hundredths of the currency's unit.
    std::optional<double> cap{};          ///< The most for the month, in the same unit; absent where there is none.
    std::optional<double> usedPercent{};  ///< Percent of `cap`, as reported.
    std::string currency{};               ///< "USD"; empty where the source does not say.
    Instant observedAt;                   ///< When it was true.
    bool operator==(const Credits&) const = default;
};

/// Limits that are not windows, as one source told of them.
struct OtherLimits {
    std::vector<OtherLimit> limits{};
    std::optional<Credits> credits{};
    [[nodiscard]] bool isEmpty() const { return limits.empty() && !credits; }
    bool operator==(const OtherLimits&) const = default;
};

/// Times are seconds since 1970.
nlohmann::json encode(const OtherLimits& others);
/// Throws DecodingError.
OtherLimits decodeOtherLimits(const nlohmann::json& value);

}  // namespace vorn
