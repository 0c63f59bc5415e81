#include "core/support/uuid.hpp"

#include <array>
#include <cstdint>
#include <random>

#include <fmt/format.h>

#include "core/support/text.hpp"

namespace vorn {
namespace {

constexpr std::string_view kShape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

}  // namespace

std::string randomUuid() {
    std::random_device device;  // the system's own source; ours are made a handful a year
    const std::array<std::uint32_t, 4> bits{device(), device(), device(), device()};
    const std::uint32_t version = (bits[1] & 0x0FFFU) | 0x4000U;
    const std::uint32_t variant = (bits[2] >> 16U & 0x3FFFU) | 0x8000U;
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", bits[0], bits[1] >> 16U, version, variant,
                       bits[2] & 0xFFFFU, bits[3]);
}

std::optional<std::string> canonicalUuid(std::string_view text) {
    if (text.size() != kShape.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < kShape.size(); ++i) {
        if (kShape[i] == '-' ? text[i] != '-' : !isHexDigit(text[i])) {
            return std::nullopt;
        }
    }
    return asciiUpper(text);
}

}  // namespace vorn
