#include "model/readings.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "model/background_queue.hpp"

namespace vorn {
namespace {

/// How long it is worth telling that a reset time moved.
constexpr Seconds kNews{3600};

}  // namespace

Readings::Readings(std::unique_ptr<SnapshotSource> snapshot, std::unique_ptr<HistoryStore> history,
                   ProbeRecordStore record, std::optional<OutcomeStore> outcomes, const ModelClock& clock,
                   BackgroundQueue& disk)
    : m_snapshot(std::move(snapshot)),
      m_clock(clock),
      m_history(std::move(history), outcomes, disk),
      m_probeMemory(std::move(record), disk),
      m_outcomes(std::move(outcomes)),
      m_disk(disk) {
    m_history.onFlushed = [this] {
        if (!m_isDetached && onNews) {
            onNews();
        }
    };
    m_probeMemory.onNews = [this](const ProbeMemory::News& news) {
        if (takeRecord(news) && onNews) {
            onNews();
        }
    };
}

void Readings::load() {
    m_history.load([this] { begin(); });
}

void Readings::begin() {
    if (m_isDetached) {
        return;
    }
    const Instant now = m_clock.now();
    for (const Ledger::Taken& taken : m_ledger.begin(m_history.newestCurrent(now), now)) {
        keep(taken);
    }
    if (onNews) {
        onNews();
    }
}

bool Readings::readSnapshot() {
    const auto stamp = m_snapshot->stamp();
    if (!stamp || stamp == m_lastSnapshot) {
        return false;
    }
    // Before parsing: what cannot be read is not tried again until it changes.
    m_lastSnapshot = stamp;
    const Instant now = m_clock.now();
    const auto snapshot = m_snapshot->read();
    std::vector<UsageWindow> windows = snapshot ? snapshot->windows() : std::vector<UsageWindow>();
    if (auto more = m_snapshot->readMore()) {
        std::ranges::move(believable(more->limits.windows, now), std::back_inserter(windows));
        m_ledger.takeOthers(more->limits.others);
    }
    std::erase_if(windows, [&](const UsageWindow& window) { return window.observedAt > now + kClockSlack; });
    if (windows.empty()) {
        return false;
    }
    m_lastStatusLineAt = std::ranges::max(windows, {}, &UsageWindow::observedAt).observedAt;
    keep(m_ledger.takeSnapshot(std::move(windows), now));
    return true;
}

bool Readings::readRecord() {
    const auto news = m_isDetached ? std::nullopt : m_probeMemory.read();
    return news && takeRecord(*news);
}

bool Readings::takeRecord(const ProbeMemory::News& news) {
    const Instant now = m_clock.now();
    const ProbeRecord& record = news.record;
    const bool isNewer = record.lastProbeAt > m_asked.lastProbeAt && *record.lastProbeAt <= now + kClockSlack;
    if (m_isDetached || !isNewer) {
        m_ledger.announce(news.announced);
        return false;
    }
    m_asked = {.lastProbeAt = record.lastProbeAt,
               .consecutiveFailures = record.consecutiveFailures,
               .failure = record.failure,
               .figuresOf = record.figuresOf};
    keep(m_ledger.takeRecord(record, news.announced, now));
    return true;
}

void Readings::takeAnswer(const ClientAnswer& answer) {
    const Instant now = m_clock.now();
    m_asked = m_asked.afterAnswer(answer, now);
    keep(m_ledger.takeAnswer(answer, now));
    saveRecord();
}

void Readings::takeFailure(const ProbeFailure& failure) {
    m_asked = m_asked.afterFailure(m_clock.now(), failure);
    saveRecord();
}

bool Readings::takeRefusals(std::span<const RefusedTurn> refusals) {
    const Instant now = m_clock.now();
    if (m_isDetached || !m_ledger.takeRefusals(refusals, now)) {
        return false;
    }
    if (m_outcomes) {
        const auto isQueued = m_disk.run([store = *m_outcomes, reached = outcomesOf(refusals), now] {
            store.add(reached, now);
            return nullptr;
        });
        static_cast<void>(isQueued);  // the next start reads the transcripts again
    }
    return true;
}

std::vector<Outcome> Readings::moved(Instant now) const {
    std::vector<Outcome> recent;
    std::ranges::copy_if(m_moved, std::back_inserter(recent),
                         [&](const Outcome& outcome) { return now - outcome.at < kNews; });
    return recent;
}

bool Readings::hasOpenDoubt() const {
    const auto since = m_ledger.doubtsSince();
    return since && (!m_asked.lastProbeAt || *since > *m_asked.lastProbeAt);
}

void Readings::announceReset(PlannedReset::Scope scope) {
    std::set<WindowKind> covered;
    for (const auto& [kind, window] : state().windows()) {
        if (PlannedReset{.scope = scope}.covers(kind)) {
            covered.insert(kind);
        }
    }
    m_ledger.announce(covered);
    saveRecord();
}

void Readings::replace(std::span<const UsageWindow> windows, UsageInsights insights,
                       std::vector<HistorySample> history) {
    m_isDetached = true;
    m_ledger = Ledger();
    m_ledger.begin(windows, m_clock.now());
    m_ledger.setInsights(std::move(insights));
    m_history.replace(std::move(history));
    m_asked = {};
    m_lastStatusLineAt = state().lastObservedAt();
}

std::vector<UsageWindow> Readings::current(Instant now) {
    m_ledger.noticeTime(now);
    return m_ledger.windows(now);
}

Asking Readings::asking(Seconds refresh) const {
    Asking asking{.lastAt = m_asked.lastProbeAt, .failure = m_asked.failure};
    asking.figuresOf = m_asked.figuresOf;
    if ((m_asked.failure || m_asked.figuresOf) && m_asked.lastProbeAt) {
        asking.retryAt = *m_asked.lastProbeAt + probeInterval(m_asked.consecutiveFailures, refresh);
    }
    return asking;
}

void Readings::keep(const Ledger::Taken& taken) {
    using Stored = HistoryStore::Stored;
    m_moved.insert(m_moved.end(), taken.moved.begin(), taken.moved.end());
    m_history.add(taken.toRecord, m_clock.now(), taken.isRecordedElsewhere ? Stored::byAnotherProcess : Stored::notYet);
    if (taken.isMemoryChanged) {
        saveRecord();  // what was announced has been seen, or a fall has been seen once: others have to know
    }
}

void Readings::saveRecord() {
    if (!m_isDetached) {
        ProbeRecord record = m_asked;
        m_ledger.remember(record);
        m_probeMemory.save(std::move(record));
    }
}

}  // namespace vorn
