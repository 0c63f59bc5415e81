#pragma once

#include <string>

#include "core/analysis/window_assessment.hpp"

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
/// A window that was tight has begun afresh.
NoticeText resetNotice(const UsageWindow& window);

}  // namespace vorn::Format
