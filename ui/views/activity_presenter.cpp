#include "ui/views/activity_presenter.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"
#include "ui/views/variants.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

struct Grid {
    Seconds span;
    Seconds bucket;
    int hoursBetweenMarks;
};

Grid gridOf(ActivityPresenter::Span span) {
    return span == ActivityPresenter::Day ? Grid{24h, 10min, 3} : Grid{7 * 24h, 2h, 24};
}

/// The end of the bucket that `now` lies in, counted from the zone's midnight.
Instant endOfBucket(Instant now, Seconds bucket, Calendar& calendar) {
    auto wall = calendar.wallTime(now);
    if (!wall) {
        return now;
    }
    wall->hour = 0;
    wall->minute = 0;
    const Instant midnight = calendar.instant(*wall).value_or(now);
    return midnight + bucket * (std::floor((now - midnight) / bucket) + 1);
}

std::vector<ActivityMark> marksFor(const ActivityPresenter::Content& content, const Grid& grid, Calendar& calendar) {
    const std::string zone = currentTimeZone();
    std::vector<ActivityMark> marks;
    for (std::size_t i = 0; i < content.buckets.size(); ++i) {
        const Instant start = content.buckets[i].start;
        const auto wall = calendar.wallTime(start);
        if (!wall || wall->minute != 0 || wall->hour % grid.hoursBetweenMarks != 0) {
            continue;
        }
        const std::string day = wall->hour == 0 ? shortWeekday(start, zone) : std::string();
        marks.push_back({.position = static_cast<double>(i) / static_cast<double>(content.buckets.size()),
                         .text = leftToRight(day.empty() ? shortTime(start, zone) : day)});
    }
    return marks;
}

/// "840", "84k", "1.2M".
std::string amount(double weight) {
    constexpr double kThousand = 1e3;
    constexpr double kMillion = 1e6;
    const auto number = [](double value, int decimals) {
        return QString::number(value, 'f', decimals).toStdString();
    };
    if (weight >= kMillion) {
        return number(weight / kMillion, 1) + "M";
    }
    return weight >= kThousand ? number(weight / kThousand, 0) + "k" : number(weight, 0);
}

}  // namespace

QString whyNoActivity(const UsageModel& model) {
    if (!model.isDemo() && !model.preferences().useLocalActivity()) {
        return "Local activity is switched off in the settings.";
    }
    if (!model.isDemo() && !model.hasScanned() && model.activity().events().empty()) {
        return "Reading Claude Code's transcripts…";
    }
    return {};
}

ActivityPresenter::Content activityContent(const UsageModel& model, ActivityPresenter::Span span) {
    ActivityPresenter::Content content{.nothing = whyNoActivity(model)};
    if (!content.nothing.isEmpty()) {
        return content;
    }
    const ActivitySummary& activity = model.activity();
    if (const auto last = activity.lastEventAt()) {
        content.lastReply = "last reply " + leftToRight(Format::clock(*last, model.now()));
    }
    const Grid grid = gridOf(span);
    Calendar calendar(currentTimeZone());
    const Instant to = endOfBucket(model.now(), grid.bucket, calendar);
    content.latest = to - grid.bucket;
    const double total = activity.weight(to - grid.span, to);
    const QString spanName = span == ActivityPresenter::Day ? "24 hours" : "7 days";
    if (!(total > 0)) {
        content.nothing = "No replies in the last " + spanName + ".";
        return content;
    }
    content.width = grid.bucket;
    content.buckets = activity.timeline(to - grid.span, to, grid.bucket);
    content.marks = marksFor(content, grid, calendar);
    const auto busiest = std::ranges::max_element(content.buckets, {}, &ActivitySummary::Bucket::weight);
    content.summary = "Activity in the last " + spanName + ", most at " +
                      QString::fromStdString(Format::clock(busiest->start, content.latest));
    return content;
}

ActivityPresenter::ActivityPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &ActivityPresenter::passTime);
    connect(&model, &UsageModel::activityChanged, this, &ActivityPresenter::update);
    update();
}

void ActivityPresenter::setSpan(int span) {
    const Span wanted = span == Week ? Week : Day;
    if (std::exchange(m_span, wanted) != wanted) {
        update();
    }
}

QList<double> ActivityPresenter::bars() const {
    double highest = 0;
    for (const auto& bucket : m_content.buckets) {
        highest = std::max(highest, bucket.weight);
    }
    QList<double> heights;
    heights.reserve(static_cast<qsizetype>(m_content.buckets.size()));
    for (const auto& bucket : m_content.buckets) {
        heights << (highest > 0 ? bucket.weight / highest : 0);
    }
    return heights;
}

QVariantList ActivityPresenter::marks() const {
    return variants(m_content.marks);
}

void ActivityPresenter::setShown(bool shown) {
    if (std::exchange(m_isShown, shown) != shown) {
        emit isShownChanged();
        update();
    }
}

QString ActivityPresenter::describe(int bar) const {
    if (bar < 0 || static_cast<std::size_t>(bar) >= m_content.buckets.size()) {
        return {};
    }
    const auto& bucket = m_content.buckets[static_cast<std::size_t>(bar)];
    const std::string until = shortTime(bucket.start + m_content.width, currentTimeZone());
    const std::string used = bucket.weight > 0 ? amount(bucket.weight) + " weighted tokens" : "nothing";
    return leftToRight(Format::clock(bucket.start, m_content.latest) + " – " + until) + " · " + leftToRight(used);
}

/// Without news the strip is the same until its next bucket begins.
void ActivityPresenter::passTime() {
    const Seconds passed = m_model.now() - m_content.latest;
    const bool isCurrent = !m_content.buckets.empty() && passed >= Seconds{0} && passed < m_content.width;
    if (!isCurrent || whyNoActivity(m_model) != m_content.nothing) {
        update();
    }
}

void ActivityPresenter::update() {
    if (!m_isShown) {
        return;
    }
    auto content = activityContent(m_model, m_span);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
