#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/data/ledger.hpp"
#include "tests/support/readings.hpp"

/// A week whose truth is known, told by a client that often answers from its cache, by a status line, or by both, and
/// what is believed of it.
namespace vorn {
namespace {

using namespace test;

const WindowKind kSession = WindowKind::session();
const WindowKind kWeek = WindowKind::week();
const WindowKind kModel = WindowKind::weekModel("Opus");

/// What the service knows.
class Service {
public:
    explicit Service(unsigned seed) : m_random(seed) {}

    void advance(Instant now) {
        const double hour = std::fmod((now - kNow) / 1h + 12, 24);
        const bool works = hour >= 9 && hour < 19;
        renew(kSession, now, works);
        renew(kWeek, now, true);
        const double day = (now - kNow) / 24h;
        if (day >= 1 && day < 5) {
            renew(kModel, now, true);
        } else {
            m_windows.erase(kModel);
        }
        if (works) {
            for (auto& [kind, window] : m_windows) {
                window.usedPercent = std::min(100.0, window.usedPercent + (kind.isSession() ? 0.4 : 0.03) * chance());
            }
        }
        if (works && chance() < 0.0008) {  // about every second day
            const WindowKind kind = chance() < 0.5 ? kSession : kWeek;
            if (m_windows.contains(kind) && m_windows.at(kind).usedPercent >= 20) {
                m_windows.at(kind).usedPercent = 0;
                resets.emplace_back(kind, now);
            }
        }
        if (works && chance() < 0.0005 && m_windows.contains(kSession)) {
            *m_windows.at(kSession).resetsAt += 20min;
            ++moves;
        }
        if (now >= m_modeEnds) {
            isRefusing = !isRefusing && chance() < 0.6;
            m_modeEnds = now + (isRefusing ? 150min : 90min) * chance();
        }
    }

    [[nodiscard]] std::vector<UsageWindow> read(Instant now, DataSource source, bool whole) const {
        std::vector<UsageWindow> readings;
        for (auto [kind, window] : m_windows) {
            window.observedAt = now;
            window.source = source;
            window.usedPercent = whole ? std::floor(window.usedPercent) : window.usedPercent;
            if (source == DataSource::usageCommand || kind != kModel) {
                readings.push_back(window);
            }
        }
        return readings;
    }
    [[nodiscard]] const std::map<WindowKind, UsageWindow>& windows() const { return m_windows; }
    double chance() { return std::uniform_real_distribution<double>(0, 1)(m_random); }

    bool isRefusing = false;
    std::vector<std::pair<WindowKind, Instant>> resets;  ///< Early ones.
    int moves = 0;

private:
    void renew(const WindowKind& kind, Instant now, bool isUsed) {
        const auto found = m_windows.find(kind);
        if (found != m_windows.end() && *found->second.resetsAt <= now) {
            m_windows.erase(found);
        }
        if (isUsed && !m_windows.contains(kind)) {
            m_windows.insert_or_assign(kind, UsageWindow{kind, 0, now + kind.length(), now});
        }
    }

    std::map<WindowKind, UsageWindow> m_windows;
    Instant m_modeEnds = kNow;
    std::mt19937 m_random;
};

/// Answers from its cache when the service refuses, for up to an hour, and from one younger than a minute always.
class Client {
public:
    std::optional<ClientAnswer> ask(const Service& service, Instant now) {
        ++asked;
        const bool isYoung = m_cached && now - m_cached->fetchedAt < 1min;
        if (!isYoung && !service.isRefusing) {
            m_cached = ClientAnswer{
                .windows = service.read(now, DataSource::usageCommand, true), .fetchedAt = now, .isComplete = true};
        }
        if (!m_cached || now - m_cached->fetchedAt > 1h) {
            return std::nullopt;
        }
        ClientAnswer answer = *m_cached;
        answer.answeredAt = now;
        return answer;
    }
    int asked = 0;

private:
    std::optional<ClientAnswer> m_cached;
};

struct Setting {
    const char* name;
    bool app = false;       ///< One ledger for the whole week, a question every five minutes and for each doubt.
    bool terminal = false;  ///< A process every seven minutes.
    bool relay = false;     ///< The status line is connected.
};

/// The programs of one user, with the files they share.
class Home {
public:
    explicit Home(const Setting& setting) : m_setting(setting) { m_app.begin({}, kNow); }

    void live(Service& service, Instant now, int minute) {
        if (m_setting.relay && service.chance() < 0.4 && service.windows().contains(kSession)) {
            m_snapshot = service.read(now, DataSource::statusLine, false);  // of the latest turn, whoever refreshes
        }
        if (m_setting.app) {
            look(m_app, now);
            const bool isDue = isProbeDue(m_record, 5min, now);
            const bool isDoubtful = m_app.doubtsSince() > m_record.lastProbeAt && m_record.consecutiveFailures == 0 &&
                                    now - *m_record.lastProbeAt >= 2min;
            if (isDue || isDoubtful) {
                ask(m_app, service, now);
            }
            check(m_app, service, now);
        }
        if (m_setting.terminal && minute % 7 == 0) {
            Ledger ledger;
            ledger.begin(m_history, now);
            ledger.takeRecord(m_record, m_record.expectedResets, now);
            look(ledger, now);
            if (mayRetryProbe(m_record, 5min, now)) {
                ask(ledger, service, now);
            }
            check(ledger, service, now);
            if (m_setting.app && m_record.lastProbeAt == now) {
                m_app.takeRecord(m_record, {}, now);
            }
        }
    }

    int falseFalls = 0;
    int untrueAges = 0;
    int lateResets = 0;
    int moved = 0;
    Client client;

private:
    void look(Ledger& ledger, Instant now) {
        if (!m_snapshot.empty()) {
            keep(ledger, ledger.takeSnapshot(m_snapshot, now));
        }
    }
    void ask(Ledger& ledger, const Service& service, Instant now) {
        const auto answer = client.ask(service, now);
        if (!answer) {
            m_record = m_record.afterFailure(now, {});
            return;
        }
        m_record = m_record.afterAnswer(*answer, now);
        if (!answer->isStale()) {
            m_lastFetched = answer->fetchedAt;
        }
        keep(ledger, ledger.takeAnswer(*answer, now));
    }
    void keep(const Ledger& ledger, const Ledger::Taken& taken) {
        for (const UsageWindow& window : taken.toRecord) {
            std::erase_if(m_history, [&](const UsageWindow& old) { return old.kind == window.kind; });
            m_history.push_back(window);
        }
        ledger.remember(m_record);
        moved += static_cast<int>(taken.moved.size());
    }

    /// Nothing lies below the truth, every reset is believed once both sources told of a time after it, and a figure's
    /// time is when it was true.
    void check(const Ledger& ledger, const Service& service, Instant now) {
        m_truth.emplace_back(now, service.windows());
        for (const UsageWindow& shown : ledger.windows(now)) {
            const auto then = std::ranges::lower_bound(m_truth, shown.observedAt, {}, &Moment::first);
            const auto was = then->second.find(shown.kind);
            if (!shown.resetsAt || was == then->second.end() || !shown.isSameInstance(was->second)) {
                continue;
            }
            falseFalls += shown.usedPercent < was->second.usedPercent - 2 ? 1 : 0;
            const auto isReset = [&](const auto& reset) {
                return reset.first == shown.kind && reset.second > shown.observedAt - shown.kind.length();
            };
            const bool wasReset = std::ranges::any_of(service.resets, isReset);
            untrueAges += !wasReset && std::abs(shown.usedPercent - was->second.usedPercent) > 2 ? 1 : 0;
            for (const auto& [kind, at] : service.resets) {
                const bool isHigh =
                    kind == shown.kind && now - at < 1h && shown.usedPercent > was->second.usedPercent + 2;
                lateResets += isHigh && isToldByBoth(at) ? 1 : 0;
            }
        }
    }

    [[nodiscard]] bool isToldByBoth(Instant after) const {
        return !m_snapshot.empty() && m_snapshot[0].observedAt >= after && m_lastFetched && *m_lastFetched >= after &&
               m_snapshot[0].observedAt != *m_lastFetched;
    }

    using Moment = std::pair<Instant, std::map<WindowKind, UsageWindow>>;
    const Setting& m_setting;
    Ledger m_app;
    ProbeRecord m_record;
    std::vector<UsageWindow> m_history;
    std::vector<UsageWindow> m_snapshot;
    std::vector<Moment> m_truth;
    std::optional<Instant> m_lastFetched;
};

TEST(BelievedWeek, HasNoFalseFallAndMissesNoReset) {
    const Setting settings[] = {{.name = "the application", .app = true},
                                {.name = "the application, connected", .app = true, .relay = true},
                                {.name = "the terminal", .terminal = true},
                                {.name = "the terminal, connected", .terminal = true, .relay = true},
                                {.name = "both", .app = true, .terminal = true, .relay = true}};
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.name);
        std::size_t resets = 0;
        for (unsigned seed = 1; seed <= 5; ++seed) {
            Service service(seed);
            Home home(setting);
            for (int minute = 0; minute < 7 * 24 * 60; ++minute) {
                const Instant now = kNow + minute * 1min;
                service.advance(now);
                home.live(service, now, minute);
            }
            EXPECT_EQ(home.falseFalls, 0) << "seed " << seed;
            EXPECT_EQ(home.untrueAges, 0) << "seed " << seed;
            EXPECT_EQ(home.lateResets, 0) << "seed " << seed;
            EXPECT_LE(home.moved, service.moves) << "seed " << seed;
            EXPECT_LE(home.client.asked, 7 * 24 * 60 / 4) << "seed " << seed;
            resets += service.resets.size();
        }
        EXPECT_GT(resets, 3U);
    }
}

}  // namespace
}  // namespace vorn
