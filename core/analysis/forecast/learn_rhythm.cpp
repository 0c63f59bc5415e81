#include "core/analysis/forecast/learn_rhythm.hpp"

#include <algorithm>
#include <cmath>

namespace vorn::VornEngine {
namespace {

using namespace std::chrono_literals;
using Reading = Rhythm::Reading;

constexpr Seconds kWeek = 168h;
constexpr Seconds kSession = 5h;
constexpr double kHalfLifeDays = 20;
/// Who was away for longer than this without readings may have worked elsewhere: these hours teach nothing.
constexpr Seconds kLongestSilence = 72h;
/// Rises within this time belong to the hour in which they were seen.
constexpr Seconds kPrompt = 15min;
/// Replies are written down at other moments than they are counted by the service.
constexpr Seconds kLag = 1min;
constexpr Seconds kOldActivity = 35 * 24h;
constexpr Seconds kLongestMemory = 366 * 24h;
constexpr double kSessionsKept = 12;
constexpr double kWeeksKept = 8;
constexpr double kFullPercent = 98;  // whole percents; refused at once where a reply would be too large

class Learner {
public:
    Learner(Rhythm& rhythm, const LearnInput& input) : m_rhythm(rhythm), m_input(input) {}

    void takeIn(const HistorySample& sample) {
        if (!sample.resetsAt || !sample.isFinite()) {
            return;
        }
        const Reading next{std::clamp(sample.usedPercent, 0.0, 1000.0), *sample.resetsAt, sample.observedAt};
        if (sample.kindKey == "week") {
            week(next);
        } else if (sample.kindKey == "session") {
            session(next);
        } else if (sample.kindKey.starts_with("week:")) {
            model(sample.kindKey, next);
        }
    }

    void takeInOldActivity();

private:
    [[nodiscard]] double localWeight(Instant from, Instant to) const {
        return m_input.activity != nullptr ? m_input.activity->weight(from, std::min(to, m_input.now)) : 0;
    }

    void week(const Reading& next);
    void session(const Reading& next);
    void model(const std::string& key, const Reading& next);
    void spread(Instant from, Instant to, double points);
    void add(std::int64_t hour, double points);
    void see(const Reading& before, const Reading& next, bool isSame);
    void fadeADay();
    Rhythm::Day& day(std::int64_t number);

    Rhythm& m_rhythm;
    const LearnInput& m_input;
};

bool isSameWindow(const Reading& one, const Reading& other) {
    return sameReset(one.resetsAt, other.resetsAt);
}

void Learner::week(const Reading& next) {
    if (!m_rhythm.week) {
        m_rhythm.week = next;
        m_rhythm.firstReadAt = next.observedAt;
        m_rhythm.seenUpTo = m_input.zone.hour(next.observedAt);
        if (m_input.activity != nullptr) {
            takeInOldActivity();
        }
        return;
    }
    const Reading before = *m_rhythm.week;
    const bool isSame = isSameWindow(before, next);
    const double rise = isSame ? next.usedPercent - before.usedPercent : next.usedPercent;
    const Instant from = isSame ? before.observedAt : std::max<Instant>(before.observedAt, next.resetsAt - kWeek);
    if (rise > 0 && from < next.observedAt) {
        spread(from, next.observedAt, rise);
        m_rhythm.exchange.weekPoints += rise;
    }
    if (isSame && m_input.activity != nullptr) {
        m_rhythm.weekPointsWatched += std::max(0.0, rise);
        m_rhythm.weightWatched += localWeight(before.observedAt, next.observedAt);
    }
    if (!isSame) {
        const double kept = 1 - 1 / kWeeksKept;
        m_rhythm.weeks = m_rhythm.weeks * kept + 1;
        m_rhythm.fullWeeks = m_rhythm.fullWeeks * kept + (before.usedPercent >= 100 ? 1 : 0);
    }
    see(before, next, isSame);
    m_rhythm.week = next;
}

void Learner::session(const Reading& next) {
    const auto before = m_rhythm.session;
    m_rhythm.session = next;
    if (!before) {
        return;
    }
    auto& exchange = m_rhythm.exchange;
    const bool isSame = isSameWindow(*before, next);
    if (!isSame) {
        auto& sessions = m_rhythm.sessions;
        const double kept = 1 - 1 / kSessionsKept;
        sessions.count = sessions.count * kept + 1;
        sessions.landed = sessions.landed * kept + before->usedPercent;
        sessions.full = sessions.full * kept + (before->usedPercent >= kFullPercent ? 1 : 0);
    }
    const double rise = isSame ? next.usedPercent - before->usedPercent : next.usedPercent;
    if (rise <= 0) {
        return;
    }
    exchange.sessionPoints += rise;
    const Instant from = isSame ? before->observedAt : std::max<Instant>(before->observedAt, next.resetsAt - kSession);
    const bool isLocal = localWeight(from - kLag, next.observedAt) > 0;
    if (isLocal) {
        exchange.localPoints += rise;
        exchange.localWeight += localWeight(from, next.observedAt);
    } else if (m_input.activity != nullptr) {
        exchange.elsewherePoints += rise;
    }
}

void Learner::model(const std::string& key, const Reading& next) {
    auto& models = m_rhythm.models;
    const auto known = models.find(key);
    if (known == models.end()) {
        if (models.size() < Rhythm::kMostModels && key.size() <= Rhythm::kLongestModelKey) {
            models[key] = {.last = next};
        }
        return;
    }
    Rhythm::Model& model = known->second;
    if (model.last && isSameWindow(*model.last, next)) {
        model.points += std::max(0.0, next.usedPercent - model.last->usedPercent);
    } else {
        model.points += next.usedPercent;
    }
    model.last = next;
}

/// Over the hours between, as this machine was busy in them, else evenly.
void Learner::spread(Instant from, Instant to, double points) {
    if (to - from <= kPrompt) {
        add(m_input.zone.hour(to - 1s), points);
        return;
    }
    const double weight = localWeight(from, to);
    for (Instant begin = std::max<Instant>(from, to - kWeek); begin < to;) {
        const Instant end = std::min(m_input.zone.nextHour(begin), to);
        const double share = weight > 0 ? localWeight(begin, end) / weight : (end - begin) / (to - from);
        if (share > 0) {
            add(m_input.zone.hour(begin), points * share);
        }
        begin = end;
    }
}

void Learner::add(std::int64_t hour, double points) {
    m_rhythm.hours[static_cast<std::size_t>(hourOfWeek(hour))].points += points;
    day(dayOfHour(hour)).points += points;
    auto& recent = m_rhythm.recent;
    const auto at = std::ranges::lower_bound(recent, hour, {}, &Rhythm::RecentHour::number);
    if (at != recent.end() && at->number == hour) {
        at->points += points;
    } else {
        recent.insert(at, {hour, points});
    }
    for (auto& [key, model] : m_rhythm.models) {
        model.weekPoints += points;
    }
}

/// Counts the hours up to the new reading as watched. Not those in which the week's limit kept everybody from working,
/// nor a long absence before this week.
void Learner::see(const Reading& before, const Reading& next, bool isSame) {
    const std::int64_t end = m_input.zone.hour(next.observedAt);
    const bool wasAway = !isSame && next.observedAt - before.observedAt > kLongestSilence;
    std::int64_t skipped = wasAway ? m_input.zone.hour(next.resetsAt - kWeek) : 0;
    if (before.usedPercent >= 100) {
        skipped = std::max(skipped, std::min(end, m_input.zone.hour(before.resetsAt)));
    }
    constexpr auto kMostHours = static_cast<std::int64_t>(Rhythm::kMostDays) * 24;
    std::int64_t hour = std::max(m_rhythm.seenUpTo.value_or(end), end - kMostHours);
    for (; hour < end; ++hour) {
        if (hourOfWeek(hour) % 24 == 0) {
            fadeADay();
        }
        if (hour < skipped) {
            continue;
        }
        auto& slot = m_rhythm.hours[static_cast<std::size_t>(hourOfWeek(hour))];
        slot.seen += 1;
        slot.active += std::ranges::binary_search(m_rhythm.recent, hour, {}, &Rhythm::RecentHour::number) ? 1 : 0;
        day(dayOfHour(hour)).seenHours += 1;
    }
    m_rhythm.seenUpTo = end;
    constexpr auto kRecentHours = static_cast<std::int64_t>(Rhythm::kMostRecent);
    std::erase_if(m_rhythm.recent, [&](const auto& recent) { return recent.number <= end - kRecentHours; });
}

void Learner::fadeADay() {
    const double kept = std::exp2(-1 / kHalfLifeDays);
    for (auto& hour : m_rhythm.hours) {
        hour = {hour.seen * kept, hour.points * kept, hour.weight * kept, hour.active * kept};
    }
    for (double* sum : {&m_rhythm.exchange.sessionPoints, &m_rhythm.exchange.weekPoints, &m_rhythm.exchange.localPoints,
                        &m_rhythm.exchange.localWeight, &m_rhythm.exchange.elsewherePoints, &m_rhythm.weekPointsWatched,
                        &m_rhythm.weightWatched}) {
        *sum *= kept;
    }
    for (auto& [key, model] : m_rhythm.models) {
        model.points *= kept;
        model.weekPoints *= kept;
    }
}

Rhythm::Day& Learner::day(std::int64_t number) {
    auto& days = m_rhythm.days;
    auto at = std::ranges::lower_bound(days, number, {}, &Rhythm::Day::number);
    if (at == days.end() || at->number != number) {
        at = days.insert(at, {.number = number});
        if (days.size() > Rhythm::kMostDays) {
            // The oldest goes, unless it is the one that was asked for.
            const auto oldest = at == days.begin() ? std::next(at) : days.begin();
            const auto index = at - days.begin() - (oldest < at ? 1 : 0);
            days.erase(oldest);
            at = days.begin() + index;
        }
    }
    return *at;
}

void Learner::takeInOldActivity() {
    const Instant until = *m_rhythm.firstReadAt;
    const auto events = m_input.activity->events(until - kOldActivity, until);
    m_rhythm.firstKnownAt = events.empty() ? until : events.front().timestamp;
    if (events.empty() || !m_rhythm.seenUpTo) {
        return;
    }
    m_rhythm.weightBefore = m_input.activity->weight(*m_rhythm.firstKnownAt, until);
    m_rhythm.hoursBefore = (until - *m_rhythm.firstKnownAt) / 1h;
    const ZoneOffsets& zone = m_input.zone;
    const std::int64_t now = *m_rhythm.seenUpTo;
    const auto kept = [&](std::int64_t hour) {
        return std::exp2(-static_cast<double>(now - hour) / 24 / kHalfLifeDays);
    };
    const std::int64_t end = zone.hour(until);
    for (Instant begin = *m_rhythm.firstKnownAt; begin < until;) {
        const std::int64_t hour = zone.hour(begin);
        const Instant next = std::min(zone.nextHour(begin), until);
        const double weight = m_input.activity->weight(begin, next);
        auto& slot = m_rhythm.hours[static_cast<std::size_t>(hourOfWeek(hour))];
        slot.weight += weight * kept(hour);
        auto& known = day(dayOfHour(hour));
        known.weight += weight;
        if (hour < end) {
            slot.seen += kept(hour);
            slot.active += weight > 0 ? kept(hour) : 0;
            known.seenHours += 1;
        }
        begin = next;
    }
}

/// What was learnt while the clock was ahead must not keep out what comes now.
void turnBack(Rhythm& rhythm, const LearnInput& input) {
    const Instant now = input.now;
    rhythm.learntUpTo = now;
    const auto earlier = [&](std::optional<Reading>& reading) {
        if (reading) {
            reading->observedAt = std::min(reading->observedAt, now);
        }
    };
    earlier(rhythm.week);
    earlier(rhythm.session);
    for (auto& [key, model] : rhythm.models) {
        earlier(model.last);
    }
    for (auto* instant : {&rhythm.firstReadAt, &rhythm.firstKnownAt}) {
        if (*instant) {
            *instant = std::min(**instant, now);
        }
    }
    const std::int64_t hour = input.zone.hour(now);
    rhythm.seenUpTo = std::min(rhythm.seenUpTo.value_or(hour), hour);
    std::erase_if(rhythm.days, [&](const auto& day) { return day.number > dayOfHour(hour); });
    std::erase_if(rhythm.recent, [&](const auto& recent) { return recent.number > hour; });
}

}  // namespace

Rhythm learn(Rhythm rhythm, const LearnInput& input) {
    if (rhythm.learntUpTo && *rhythm.learntUpTo > input.now + kClockSlack) {
        turnBack(rhythm, input);
    } else if (rhythm.learntUpTo && input.now - *rhythm.learntUpTo > kLongestMemory) {
        rhythm = {};
    }
    Learner learner(rhythm, input);
    const auto isLearnt = [&](const HistorySample& sample) {
        return rhythm.learntUpTo && sample.observedAt <= *rhythm.learntUpTo;
    };
    auto begin = input.history.rbegin();
    while (begin != input.history.rend() && !isLearnt(*begin)) {
        ++begin;
    }
    std::optional<Instant> newest = rhythm.learntUpTo;
    for (const HistorySample& sample : input.history.subspan(static_cast<std::size_t>(input.history.rend() - begin))) {
        if (sample.observedAt <= input.now) {
            learner.takeIn(sample);
            newest = newest ? std::max(*newest, sample.observedAt) : sample.observedAt;
        }
    }
    rhythm.learntUpTo = newest;
    if (rhythm.firstReadAt && !rhythm.firstKnownAt && input.activity != nullptr) {
        learner.takeInOldActivity();
    }
    return rhythm;
}

}  // namespace vorn::VornEngine
