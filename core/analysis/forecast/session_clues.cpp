#include <algorithm>
#include <cmath>

#include "core/analysis/forecast/forecast_clues.hpp"
#include "core/analysis/forecast/forecast_prior.hpp"

namespace vorn::VornEngine {
namespace {

using namespace std::chrono_literals;

struct Point {
    Instant time;
    double used = 0;
};

/// This session's readings in order of time, up to now.
std::vector<Point> course(const Situation& s) {
    const Instant start = *s.window.resetsAt - 5h - kSameInstanceTolerance;
    std::vector<Point> points;
    for (auto sample = s.history.rbegin(); sample != s.history.rend() && sample->observedAt >= start; ++sample) {
        if (sample->kindKey == "session" && sample->observedAt <= s.now &&
            sameReset(sample->resetsAt, s.window.resetsAt)) {
            points.push_back({sample->observedAt, sample->usedPercent});
        }
    }
    std::ranges::reverse(points);
    if (points.empty() || points.back().time < s.window.observedAt) {
        points.push_back({std::min(s.window.observedAt, s.now), s.window.usedPercent});
    }
    return points;
}

/// How fast the session grew lately.
class Growth {
public:
    Growth(const Situation& s, Instant start)
        : m_situation(s), m_start(start), m_points(course(s)), m_used(m_points.back().used) {
        if (s.activity != nullptr && m_used >= 3) {
            const double weight = s.activity->weight(start, m_points.back().time);
            m_price = weight > 0 ? m_used / weight : 0;
        }
    }

    [[nodiscard]] double weight(Instant from, Instant to) const {
        return m_situation.activity != nullptr ? m_situation.activity->weight(from, to) : 0;
    }

    /// Points that this machine used in the last `span`, or half of those read, whichever is more: readings round down
    /// and come late, local weights are rough.
    [[nodiscard]] double during(Seconds span) const {
        const Instant from = std::max<Instant>(m_start, m_situation.now - span);
        const double rise = m_used - usedAt(from);
        return m_price > 0 ? std::max(m_price * weight(from, m_situation.now), 0.5 * rise) : rise;
    }

    [[nodiscard]] double usedAt(Instant instant) const {
        const auto after = std::ranges::upper_bound(m_points, instant, {}, &Point::time);
        return after == m_points.begin() ? 0 : std::prev(after)->used;
    }

    /// When it last grew, as far as readings tell.
    [[nodiscard]] Instant lastRise() const {
        std::size_t last = m_points.size() - 1;
        while (last > 0 && m_points[last - 1].used >= m_used) {
            --last;
        }
        return last > 0 || m_used > 0 ? m_points[last].time : m_start;
    }

    /// Points a cost-weighted token of this session; 0 while unknown.
    [[nodiscard]] double price() const { return m_price; }
    [[nodiscard]] Instant readAt() const { return m_points.back().time; }

private:
    const Situation& m_situation;
    Instant m_start;
    std::vector<Point> m_points;
    double m_used = 0;
    double m_price = 0;
};

/// How long this machine has been busy without a pause, and since when it is not; hours.
struct Spell {
    double run = 0;
    double quiet = 10;
};

Spell spell(const Situation& s, const Growth& growth) {
    constexpr Seconds kPause = 15min;
    Spell spell;
    spell.quiet = std::min(10.0, (s.now - growth.lastRise()) / 1h);
    if (s.activity == nullptr) {
        return spell;
    }
    const auto events = s.activity->events(s.now - 24h, s.now);
    Instant last = s.now;
    for (auto event = events.rbegin(); event != events.rend() && last - event->timestamp < kPause; ++event) {
        last = event->timestamp;
    }
    if (!events.empty()) {
        spell.quiet = std::min(spell.quiet, (s.now - events.back().timestamp) / 1h);
    }
    spell.run = (s.now - last) / 1h;
    return spell;
}

/// Of the session points, those that were used while this machine did nothing.
double elsewhereShare(const Rhythm& rhythm) {
    const auto& exchange = rhythm.exchange;
    return (exchange.elsewherePoints + 2) / (exchange.elsewherePoints + exchange.localPoints + 20);
}

/// What is usual until the reset.
struct ToCome {
    double busyHours = 0;
    double points = 0;  ///< Of the week limit.
};

ToCome toCome(const Situation& s, Instant reset) {
    ToCome sum;
    for (Instant at = s.now; at < reset;) {
        const auto hour = static_cast<std::size_t>(hourOfWeek(s.zone.hour(at)));
        const Instant end = std::min(s.zone.nextHour(at), reset);
        sum.busyHours += (end - at) / 1h * s.usual.busyShare[hour];
        sum.points += (end - at) / 1h * s.usual.pointsPerHour[hour];
        at = end;
    }
    return sum;
}

/// Points of the week limit that are left: when they are used up, the session ends as well.
double leftOfWeek(const Situation& s) {
    const auto& week = s.rhythm.week;
    return week && week->resetsAt > s.now ? 100 - week->usedPercent : 100;
}

/// The logarithm of points an hour, in the last `span` or since the session began; shorter times count as if they were
/// `softening` hours longer.
double speed(const Situation& s, const Growth& growth, Seconds span, double softening) {
    const Instant start = *s.window.resetsAt - 5h;
    const double hours = std::max(0.0, std::min<Seconds>(span, s.now - start) / 1h);
    return std::log(std::max(0.0, growth.during(span)) / (hours + softening) + prior::kSessionSoftening);
}

/// The clues proper, in points of the session limit.
std::vector<double> clueValues(const Situation& s, const Growth& growth, Instant from, double used) {
    constexpr double kSoft = prior::kSessionSoftening;
    const Instant reset = *s.window.resetsAt;
    const Instant start = reset - 5h;
    const UsualWeek& usual = s.usual;
    const double scale = 1 / usual.weekPerSession;
    const std::int64_t hour = s.zone.hour(s.now);
    const double left = std::max(0.0, (reset - s.now) / 1h);
    const double elapsed = std::max(0.05, (s.now - start) / 1h);
    const auto& sessions = s.rhythm.sessions;
    const Spell work = spell(s, growth);
    const ToCome coming = toCome(s, reset);
    const double lastDays = usedIn(s.rhythm, hour - 72, hour + 1);
    const double weekLeft = leftOfWeek(s) * scale;
    return {
        std::log(usual.expected(s.zone, from, reset) * scale + kSoft),
        std::log(used * left / elapsed + kSoft),
        speed(s, growth, 20min, 0.1),
        speed(s, growth, 40min, 0.15),
        speed(s, growth, 60min, 0.2),
        speed(s, growth, 150min, 0.3),
        std::log(std::min(work.quiet * 60, 120.0) + 2),
        std::log(work.run + 0.1),
        std::log(left + 0.2),
        std::log(elapsed + 0.2),
        left / 5,
        std::log((sessions.landed + 3 * 45) / (sessions.count + 3) + 5),
        (sessions.full + 0.6) / (sessions.count + 3),
        usual.workdaySpread,
        (s.rhythm.fullWeeks + 0.3) / (s.rhythm.weeks + 1.3),
        used / 100,
        std::log(used + 3),
        std::log(usual.expected(s.zone, from, std::min<Instant>(reset, s.now + 1h)) * scale + 2),
        std::log((coming.points + 0.3) / (coming.busyHours + 0.2) * scale + 3),
        std::log(coming.busyHours + 0.1),
        std::log((used + 10) / (usual.expected(s.zone, start, s.now) * scale + 10)),
        std::log(usedIn(s.rhythm, dayOfHour(hour) * 24, hour + 1) * scale + 5),
        std::log((lastDays + 8) / (usual.expected(s.zone, s.now - 72h, s.now) + 8)),
        std::log(usual.pointsPerWeek * scale + 50),
        std::log(scale),
        std::log(std::max(weekLeft, 1.0) + 2),
        std::log((weekLeft + 5) / (100 - std::min(used, 99.9) + 5)),
        usual.activeShare,
        elsewhereShare(s.rhythm),
        1 / (1 + usual.weeksKnown),
        s.activity != nullptr ? 1.0 : 0.0,
    };
}

}  // namespace

Clues sessionClues(const Situation& s) {
    const Growth growth(s, *s.window.resetsAt - 5h);
    const double reading = std::max(0.0, s.window.usedPercent);
    const double since = growth.weight(s.window.observedAt, s.now) * growth.price();
    Clues clues;
    clues.used = reading >= 100 ? reading : std::min(reading + since, 99.9);
    clues.from = s.activity != nullptr ? s.now : std::min(s.window.observedAt, s.now);
    clues.values = clueValues(s, growth, clues.from, clues.used);
    return clues;
}

}  // namespace vorn::VornEngine
