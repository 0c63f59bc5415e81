#include "ui/dashboard/activity_content.hpp"

#include <algorithm>
#include <cmath>

#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/wording/activity_text.hpp"
#include "ui/controls/left_to_right.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

struct Grid {
    Seconds bucket;
    int hoursBetweenMarks;
};

Grid gridOf(PeriodForViews::Period period) {
    return period == PeriodForViews::Week ? Grid{2h, 24} : Grid{10min, 3};
}

/// The end of the bucket that `now` lies in, counted from the zone's midnight.
Instant endOfBucket(Instant now, Seconds bucket, const Calendar& calendar) {
    auto wall = calendar.wallTime(now);
    if (!wall) {
        return now;
    }
    wall->hour = 0;
    wall->minute = 0;
    const Instant midnight = calendar.instant(*wall).value_or(now);
    return midnight + bucket * (std::floor((now - midnight) / bucket) + 1);
}

void addMarks(int hoursBetween, const Calendar& calendar, ActivityContent& content) {
    const TimeZone zone = currentTimeZone();
    for (std::size_t i = 0; i < content.buckets.size(); ++i) {
        const Instant start = content.buckets[i].start;
        const auto wall = calendar.wallTime(start);
        if (!wall || wall->minute != 0 || wall->hour % hoursBetween != 0) {
            continue;
        }
        const std::string day = wall->hour == 0 ? shortWeekday(start, zone) : std::string();
        content.marks << static_cast<double>(i) / static_cast<double>(content.buckets.size());
        content.markTexts << leftToRight(day.empty() ? shortTime(start, zone) : day);
    }
}

}  // namespace

QString ActivityContent::describe(int bar) const {
    if (bar < 0 || static_cast<std::size_t>(bar) >= buckets.size()) {
        return {};
    }
    return shownPhrase(Format::bucketText(buckets[static_cast<std::size_t>(bar)], width, latest));
}

ActivityContent activityContent(const Answer& answer, PeriodForViews::Period period) {
    ActivityContent content{.period = period, .nothing = QString::fromStdString(Format::whyNoActivity(answer))};
    if (!content.nothing.isEmpty() || !answer.activity) {
        return content;
    }
    const ActivitySummary& activity = *answer.activity;
    if (const auto last = activity.lastEventAt()) {
        content.lastReply = shownPhrase(Format::lastReply(*last, answer.now));
    }
    const Grid grid = gridOf(period);
    const Seconds span = lengthOf(period);
    const Calendar calendar(currentTimeZone());
    const Instant to = endOfBucket(answer.now, grid.bucket, calendar);
    if (!(activity.weight(to - span, to) > 0)) {
        content.nothing = QString::fromStdString(Format::noReplies(span));
        return content;
    }
    content.width = grid.bucket;
    content.latest = to - grid.bucket;
    content.buckets = activity.timeline(to - span, to, grid.bucket);
    addMarks(grid.hoursBetweenMarks, calendar, content);
    const auto busiest = *std::ranges::max_element(content.buckets, {}, &ActivitySummary::Bucket::weight);
    for (const ActivitySummary::Bucket& bucket : content.buckets) {
        content.bars << (busiest.weight > 0 ? bucket.weight / busiest.weight : 0);
    }
    content.summary = QString::fromStdString(Format::spokenActivity(span, busiest, content.latest));
    return content;
}

Instant activityEnd(PeriodForViews::Period period, Instant now) {
    const Calendar calendar(currentTimeZone());
    return endOfBucket(now, gridOf(period).bucket, calendar);
}

}  // namespace vorn
