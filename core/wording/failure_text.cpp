#include "core/wording/failure_text.hpp"

#include <string_view>

namespace vorn::Format {
namespace {

using Kind = ProbeFailure::Kind;
using Cause = ProbeFailure::Cause;

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
    if (failure.cause == Cause::interpreterMissing) {
        return "Install " + failure.subject + ", or make it known where Vorn looks: a link in ~/.local/bin will do.";
    }
    if (failure.cause == Cause::folderMissing) {
        return "Vorn runs it in an empty folder of its own; make its parent writable, or set VORN_HOME.";
    }
    if (failure.kind != Kind::commandFailed || failure.cause == Cause::noFiguresNow) {
        return {};
    }
    // 2.1.170 is the oldest client seen to know the option.
    if (failure.detail.find("unknown option '--safe-mode'") != std::string::npos) {
        return "This Claude Code is too old for Vorn; update it to 2.1.170 or newer with: claude update. Its status "
               "line works with Vorn already: vornctl connect";
    }
    if (trimmed(failure.detail).empty()) {
        return "It ended without a word; claude -p /usage in a terminal may tell more.";
    }
    return {};
}

std::string sentence(const ProbeFailure& failure) {
    switch (failure.cause) {
        case Cause::notSignedIn:
            return "Claude Code is not signed in to a plan here: run claude, then /login. With an API key there are no "
                   "plan limits.";
        case Cause::apiKey:
            return "With an API key there are no plan limits.";
        case Cause::noFiguresNow:
            return "Claude Code could not get the figures just now.";
        case Cause::interpreterMissing:
            return "Claude Code is a script here that needs " + failure.subject + ", which Vorn does not find.";
        case Cause::saidWhy:
            return "claude /usage failed: " +
                   std::string(trimmed(failure.subject.substr(0, failure.subject.find('\n'))));
        case Cause::folderMissing:
        case Cause::clientTooOld:
        case Cause::unknown:
            break;
    }
    const std::string text = description(failure);
    return std::string(trimmed(std::string_view(text).substr(0, text.find('\n'))));
}

std::string quoted(const ProbeFailure& failure) {
    const bool hasOwnSentence = failure.cause != Cause::unknown && failure.cause != Cause::clientTooOld &&
                                failure.cause != Cause::folderMissing;
    if (hasOwnSentence) {
        return {};
    }
    const std::string text = description(failure);
    const auto end = text.find('\n');
    return end == std::string::npos ? std::string() : std::string(trimmed(std::string_view(text).substr(end)));
}

bool wasNobodyAsked(const ProbeFailure& failure) {
    return failure.kind == Kind::claudeNotFound || failure.kind == Kind::launchFailed || failure.kind == Kind::other;
}

}  // namespace vorn::Format
