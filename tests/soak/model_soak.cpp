// A week of the application's model in as little time as it takes: 120,000 ticks of a user who works, with a clock that
// jumps, a client that fails now and then and transcripts that change. What the process holds must not grow.
//
//   model_soak [TICKS]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <span>
#include <vector>

#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include "core/support/file.hpp"
#include "tests/support/model_world.hpp"
#include "tests/support/working_day.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::Counters;
using test::kMidnight;

constexpr int kWeek = 120'000;  // ticks: 6.9 days
constexpr int kReports = 10;
constexpr int kDay = 17'280;

class WorkingWeek : public test::ModelWorld {
public:
    WorkingWeek() : ModelWorld(kMidnight + 8h) {
        client = [this]() -> ProbeSource::Answer {
            if (++m_asked % 50 == 0) {
                return ProbeFailure{.kind = ProbeFailure::Kind::commandFailed, .detail = "The client says no."};
            }
            return ClientAnswer{.windows = m_counters.read(now), .insights = UsageInsights{.observedAt = now}};
        };
        transcripts = [this] {
            return ActivitySummary({{.timestamp = now - 1min,
                                     .model = SharedText("claude-opus-5-5"),
                                     .cwd = SharedText("/srv"),
                                     .tokens = {.output = 400}}});
        };
    }

    void step(int tickNumber) {
        now += UsageModel::tickInterval + jump(tickNumber);
        m_counters.rollOver(now);
        const bool isAtWork = tickNumber % kDay < kDay / 3;
        if (isAtWork && tickNumber % kTicksPerCounterStep == 0) {
            m_counters.startSession(now);
            m_counters.work(tickNumber % 7 == 0 ? 40 : 12);
        }
        if (isAtWork && tickNumber % 2 == 0) {
            takeTurn();
        }
        tick();
        QCoreApplication::processEvents();
        // Noted down for tests that ask; here it would be what grows.
        probes.clear();
        scans.clear();
    }

private:
    static constexpr int kTicksPerCounterStep = 60;

    /// An hour back and forth again each day, as by somebody who corrects a clock.
    static Seconds jump(int tickNumber) {
        const int ofDay = tickNumber % kDay;
        return ofDay == kDay / 2 ? -1h : ofDay == kDay / 2 + 100 ? Seconds{1h} : Seconds{0};
    }

    void takeTurn() {
        const auto windows = m_counters.read(now);
        snapshot = StatusLineSnapshot{
            .observedAt = now,
            .rateLimits = {.fiveHour = {{.usedPercentage = windows[0].usedPercent, .resetsAt = windows[0].resetsAt}},
                           .sevenDay = {{.usedPercentage = windows[1].usedPercent, .resetsAt = windows[1].resetsAt}}},
            .sessionID = "s",
            .claudeVersion = "2"};
        ++snapshotVersion;
    }

    Counters m_counters;
    int m_asked = 0;
};

struct Held {
    double residentMegabytes = 0;
    double heapMegabytes = 0;
    std::ptrdiff_t descriptors = 0;
};

Held held() {
    ::malloc_trim(0);  // what is free shall not count, whoever had it
    const auto statm = readFile("/proc/self/statm").value_or("");
    const char* const resident = statm.c_str() + statm.find(' ');
    const double pages = std::strtod(resident, nullptr);
    constexpr double kMegabyte = 1 << 20;
    return {.residentMegabytes = pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / kMegabyte,
            .heapMegabytes = static_cast<double>(::mallinfo2().uordblks) / kMegabyte,
            .descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {})};
}

int run(int ticks) {
    constexpr double kMayGrow = 2;  // megabytes, from the fifth report on: by then there is a history of some days
    WorkingWeek week;
    week.start();
    std::vector<Held> reports;
    fmt::print("  ticks  RSS MB  heap MB  descriptors  readings\n");
    for (int i = 1; i <= ticks; ++i) {
        week.step(i);
        if (i % (ticks / kReports) == 0) {
            test::waitFor([&] { return !week.model->isProbing(); });
            const Held now = held();
            fmt::print("{:7}  {:6.2f}  {:7.3f}  {:11}  {:8}\n", i, now.residentMegabytes, now.heapMegabytes,
                       now.descriptors, week.model->history().size());
            std::fflush(stdout);
            reports.push_back(now);
        }
    }
    const Held& middle = reports.at(kReports / 2 - 1);
    const Held& last = reports.back();
    // A file that is being written just then counts.
    const auto firstHalf = std::span(reports).first(kReports / 2);
    const std::ptrdiff_t most = std::ranges::max(firstHalf, {}, &Held::descriptors).descriptors;
    const bool isFlat = last.residentMegabytes < middle.residentMegabytes + kMayGrow &&
                        last.heapMegabytes < middle.heapMegabytes + kMayGrow && last.descriptors <= most;
    fmt::print("{}\n", isFlat ? "flat" : "it grew");
    return isFlat ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    return vorn::run(std::max(vorn::kReports, argc > 1 ? std::atoi(argv[1]) : vorn::kWeek));
}
