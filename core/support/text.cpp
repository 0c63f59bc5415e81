#include "core/support/text.hpp"

#include <algorithm>

namespace vorn {
namespace {

struct LeadByte {
    std::size_t length = 0;          ///< of the whole sequence; 0 for a byte that cannot lead
    unsigned char secondLow = 0x80;  ///< narrower than 0x80..0xBF where a longer or surrogate form would fit
    unsigned char secondHigh = 0xBF;
};

LeadByte classify(unsigned char lead) {
    if (lead < 0x80) {
        return {.length = 1};
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {.length = 2};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return {.length = 3,
                .secondLow = static_cast<unsigned char>(lead == 0xE0 ? 0xA0 : 0x80),
                .secondHigh = static_cast<unsigned char>(lead == 0xED ? 0x9F : 0xBF)};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return {.length = 4,
                .secondLow = static_cast<unsigned char>(lead == 0xF0 ? 0x90 : 0x80),
                .secondHigh = static_cast<unsigned char>(lead == 0xF4 ? 0x8F : 0xBF)};
    }
    return {};
}

struct Sequence {
    std::size_t length;  ///< bytes that belong together, at least 1
    bool valid;
};

/// The sequence at the front of non-empty `bytes`; of an invalid one, its longest valid beginning.
Sequence nextSequence(std::string_view bytes) {
    const LeadByte lead = classify(static_cast<unsigned char>(bytes.front()));
    if (lead.length == 0) {
        return {.length = 1, .valid = false};
    }
    std::size_t i = 1;
    for (; i < lead.length; ++i) {
        const auto low = i == 1 ? lead.secondLow : static_cast<unsigned char>(0x80);
        const auto high = i == 1 ? lead.secondHigh : static_cast<unsigned char>(0xBF);
        if (i >= bytes.size() || static_cast<unsigned char>(bytes[i]) < low ||
            static_cast<unsigned char>(bytes[i]) > high) {
            return {.length = i, .valid = false};
        }
    }
    return {.length = i, .valid = true};
}

}  // namespace

std::string repairUtf8(std::string_view bytes) {
    std::string repaired;
    repaired.reserve(bytes.size());
    while (!bytes.empty()) {
        const Sequence sequence = nextSequence(bytes);
        repaired += sequence.valid ? bytes.substr(0, sequence.length) : std::string_view("\uFFFD");
        bytes.remove_prefix(sequence.length);
    }
    return repaired;
}

std::string_view firstCodePoints(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < text.size(); --count) {
        end += nextSequence(text.substr(end)).length;
    }
    return text.substr(0, end);
}

std::string asciiLower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::string asciiUpper(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return upper;
}

}  // namespace vorn
