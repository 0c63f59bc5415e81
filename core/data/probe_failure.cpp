#include "core/data/probe_failure.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vorn {
namespace {

using Kind = ProbeFailure::Kind;

struct Text {
    Kind kind;
    const char* rawValue;
    std::string_view sentence;
    bool hasDetail;  ///< The detail follows the sentence.
};

constexpr std::array kTexts{
    Text{Kind::launchFailed, "launchFailed", "Couldn't run claude: ", true},
    Text{Kind::commandFailed, "commandFailed", "claude /usage failed: ", true},
    Text{Kind::unrecognizedOutput, "unrecognizedOutput",
         "Vorn couldn't read the /usage output. Claude Code may have changed its format.\n", true},
    Text{Kind::claudeNotFound, "claudeNotFound",
         "Couldn't find the claude command. Install Claude Code, or set its path in Settings.", false},
    Text{Kind::timedOut, "timedOut", "claude /usage didn't answer in time.", false},
    Text{Kind::notSubscription, "notSubscription",
         "Claude Code isn't signed in with a Pro or Max subscription, so there are no plan limits to show.", false},
    Text{Kind::other, "other", "", true},
};

const Text& textOf(Kind kind) {
    for (const Text& text : kTexts) {
        if (text.kind == kind) {
            return text;
        }
    }
    return kTexts.back();
}

}  // namespace

const char* rawValue(Kind kind) {
    return textOf(kind).rawValue;
}

std::optional<Kind> probeFailureKind(std::string_view rawValue) {
    for (const Text& text : kTexts) {
        if (rawValue == text.rawValue) {
            return text.kind;
        }
    }
    return std::nullopt;
}

namespace {

constexpr std::array<const char*, 8> kCauses{"unknown",      "notSignedIn",        "apiKey",        "noFiguresNow",
                                             "clientTooOld", "interpreterMissing", "folderMissing", "saidWhy"};

}  // namespace

const char* rawValue(ProbeFailure::Cause cause) {
    return kCauses.at(static_cast<std::size_t>(cause));
}

ProbeFailure::Cause probeFailureCause(std::string_view rawValue) {
    const auto* const found = std::ranges::find(kCauses, rawValue);
    return found != kCauses.end() ? static_cast<ProbeFailure::Cause>(found - kCauses.begin())
                                  : ProbeFailure::Cause::unknown;
}

std::string description(const ProbeFailure& failure) {
    const Text& text = textOf(failure.kind);
    return std::string(text.sentence) + (text.hasDetail ? failure.detail : "");
}

ProbeFailure failureDescribedAs(std::string_view description) {
    for (const Text& text : kTexts) {
        if (text.hasDetail ? description.starts_with(text.sentence) : description == text.sentence) {
            return {.kind = text.kind, .detail = std::string(description.substr(text.sentence.size()))};
        }
    }
    return {};  // not reached: every description starts with the empty sentence of `other`
}

}  // namespace vorn
