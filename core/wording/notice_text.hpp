#pragma once

#include <string>

#include "core/analysis/window_assessment.hpp"
#include "core/data/other_limits.hpp"
#include "core/data/outcome.hpp"

/// What a notice of the desktop says.
namespace vorn::Format {

struct NoticeText {
    std::string title;
    std::string body;
    bool operator==(const NoticeText&) const = default;
};

/// The limit comes in `timeToLimit`.
NoticeText warningNotice(const UsageWindow& window, Seconds timeToLimit, Instant now);
NoticeText limitNotice(const UsageWindow& window, Instant now);
/// The reset time of a window changed.
NoticeText movedNotice(const Outcome& moved, Instant now);
/// Use went on, on credits, since the limit was reached.
NoticeText creditsNotice(const UsageWindow& window, const Credits& credits);
/// A window that was tight has begun afresh.
NoticeText resetNotice(const UsageWindow& window);

}  // namespace vorn::Format
