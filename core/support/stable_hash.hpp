#pragma once

#include <cstdint>
#include <string_view>

namespace vorn {

/// FNV-1a: the same in every build and version. `hash` is that of a text before this one.
constexpr std::uint64_t stableHash(std::string_view text, std::uint64_t hash = 0xcbf2'9ce4'8422'2325U) {
    constexpr std::uint64_t kPrime = 0x100'0000'01b3U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
    }
    return hash;
}

}  // namespace vorn
