#include "core/wording/notice_text.hpp"

#include "core/wording/format.hpp"
#include "core/wording/limit_text.hpp"
#include "core/wording/outcome_text.hpp"

namespace vorn::Format {

NoticeText warningNotice(const UsageWindow& window, Seconds timeToLimit, Instant now) {
    NoticeText notice{
        .title = window.kind.title() + ": limit in ~" + duration(timeToLimit),
        .body = "At your current pace you'll hit the limit around " + clock(now + timeToLimit, now) + "."};
    if (window.resetsAt) {
        notice.body += " It resets at " + clock(*window.resetsAt, now);
    }
    return notice;
}

NoticeText limitNotice(const UsageWindow& window, Instant now) {
    return {.title = window.kind.title() + " limit reached",
            .body = window.resetsAt ? "Resets at " + clock(*window.resetsAt, now) : "No reset time known yet"};
}

NoticeText movedNotice(const Outcome& moved, Instant now) {
    return {.title = moved.kind.title() + ": another reset time", .body = movedText(moved, now)};
}

NoticeText creditsNotice(const UsageWindow& window, const Credits& credits) {
    return {
        .title = "Now on credits",
        .body = window.kind.title() + " limit reached; what is used from now on is paid for: " + spentText(credits)};
}

NoticeText resetNotice(const UsageWindow& window) {
    return {.title = window.kind.title() + " reset", .body = "Fresh window. You're good to go."};
}

}  // namespace vorn::Format
