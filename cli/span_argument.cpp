#include "cli/span_argument.hpp"

#include <charconv>

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

std::optional<Seconds> unitOf(char letter) {
    switch (letter) {
        case 's':
            return 1s;
        case 'm':
            return 1min;
        case 'h':
            return 1h;
        case 'd':
            return 24h;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<Seconds> parseSpan(std::string_view text) {
    constexpr Seconds kLongest = 366 * 24h;
    const auto unit = text.empty() ? std::nullopt : unitOf(text.back());
    if (!unit) {
        return std::nullopt;
    }
    text.remove_suffix(1);
    int count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc{} || end != text.data() + text.size() || count <= 0 || count * *unit > kLongest) {
        return std::nullopt;
    }
    return count * *unit;
}

}  // namespace vorn::cli
