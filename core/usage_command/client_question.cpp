#include "core/usage_command/client_question.hpp"

#include <algorithm>
#include <utility>

#include "core/usage_command/claude_locator.hpp"
#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_command_probe.hpp"

namespace vorn {
namespace {

bool tellsOf(const std::vector<UsageWindow>& windows, const WindowKind& kind) {
    return std::ranges::any_of(windows, [&](const UsageWindow& window) { return window.kind == kind; });
}

ClientAnswer fromText(UsageCommandParser::Result result, Instant now) {
    const bool isComplete =
        tellsOf(result.windows, WindowKind::session()) && tellsOf(result.windows, WindowKind::week());
    return {.windows = std::move(result.windows),
            .insights = std::move(result.insights),
            .fetchedAt = now,
            .answeredAt = now,
            .isComplete = isComplete};
}

}  // namespace

ClientAnswer ClientQuestion::ask(const std::function<Instant()>& now, const Cancellation* cancellation) const {
    const auto executable = ClaudeLocator::locate(claudePath);
    if (!executable) {
        throw ProbeError(ProbeFailure::Kind::claudeNotFound);
    }
    const UsageCommandProbe usage{.executable = *executable, .timeout = timeout};
    UsageCommandParser::Result result = usage.run(now, cancellation);
    return fromText(std::move(result), now());
}

}  // namespace vorn
