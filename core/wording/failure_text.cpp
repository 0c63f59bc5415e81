#include "core/wording/failure_text.hpp"

#include <string_view>

namespace vorn::Format {
namespace {

using Kind = ProbeFailure::Kind;
/// Blanks and whatever else cannot be seen.
bool isBlank(char character) {
    return static_cast<unsigned char>(character) <= ' ';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace

std::string advice(const ProbeFailure& failure) {
    if (failure.kind != Kind::commandFailed) {
        return {};
    }
    // 2.1.170 is the oldest client seen to know the option.
    if (failure.detail.find("unknown option '--safe-mode'") != std::string::npos) {
        return "This Claude Code is too old for Vorn; update it to 2.1.170 or newer with: claude update";
    }
    if (trimmed(failure.detail).empty()) {
        return "It ended without a word; claude -p /usage in a terminal may tell more.";
    }
    return {};
}

std::string sentence(const ProbeFailure& failure) {
    const std::string text = description(failure);
    return std::string(trimmed(std::string_view(text).substr(0, text.find('\n'))));
}

std::string quoted(const ProbeFailure& failure) {
    const std::string text = description(failure);
    const auto end = text.find('\n');
    return end == std::string::npos ? std::string() : std::string(trimmed(std::string_view(text).substr(end)));
}

bool wasNobodyAsked(const ProbeFailure& failure) {
    return failure.kind == Kind::claudeNotFound || failure.kind == Kind::launchFailed || failure.kind == Kind::other;
}

}  // namespace vorn::Format
