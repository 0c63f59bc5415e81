#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vorn {

/// A short text to look for in gigabytes: it is compared only where two of its bytes occur at the distance that they
/// have in it. Choose two bytes that rarely do.
struct Marker {
    std::string_view text;   ///< 2 to 64 bytes.
    std::size_t first = 0;   ///< Index of one rare byte.
    std::size_t second = 0;  ///< Index of the other, after `first`.
};

/// Stands in every reply's line. Quotation marks and colons are everywhere in a transcript and so are the letters of
/// "type" and "assistant", but in real ones this pair is found once in seven thousand bytes.
inline constexpr Marker kAssistantMarker{.text = R"("type":"assistant")", .first = 6, .second = 12};
/// Stands in every line that counts tokens.
inline constexpr Marker kUsageMarker{.text = R"("usage")", .first = 1, .second = 6};

/// Stands in the line of a turn that the service refused.
inline constexpr Marker kQuotaMarker{.text = R"("quotaLimits")", .first = 1, .second = 6};

/// Index of the first occurrence in `text`, or `std::string_view::npos`. Uses the widest vectors the machine has, and
/// never reads outside `text`.
std::size_t findMarker(const Marker& marker, std::string_view text);

/// One implementation of `findMarker`.
struct MarkerSearch {
    const char* name;
    std::size_t (*find)(const Marker& marker, std::string_view text);
};
/// Every implementation that this machine can run, the fastest first.
std::vector<MarkerSearch> markerSearches();

}  // namespace vorn
