// How long the dashboard takes to open and to show news, with 50,000 readings and 200,000 replies:
//
//     QT_QPA_PLATFORM=offscreen build/bench/bin/dashboard_open [samples] [replies]
//
// Prints milliseconds to the first complete frame (the charts included), for the first and for a second opening; the
// main thread's time for a recomputation and the repaint that follows, when only the time moved and when there is a
// new reading or there are new replies as well, beside the same window resized; and resident memory
// before, with and after the window.
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "demo/demo.hpp"
#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "ui/dashboard/dashboard_window.hpp"
#include "ui/window/app_requests.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

/// No frame for so long: everything is drawn.
constexpr std::chrono::milliseconds kStill = 100ms;
constexpr int kRepetitions = 31;

class BenchClock : public ModelClock {
public:
    [[nodiscard]] Instant now() const override { return at; }
    Instant at = systemNow();
};

class ManualTicker : public Ticker {
public:
    void start(Seconds, std::function<void()> onTick) override { tick = std::move(onTick); }
    void stop() override {}
    std::function<void()> tick;
};

class NoSnapshot : public SnapshotSource {
public:
    [[nodiscard]] std::optional<FileStamp> stamp() const override { return std::nullopt; }
    [[nodiscard]] std::optional<StatusLineSnapshot> read() const override { return std::nullopt; }
};

/// What the model's sources say next.
struct Busy {
    BenchClock* clock = nullptr;
    ClientAnswer reading;
    std::vector<ActivityEvent> replies;
};

class BusyProbe : public ProbeSource {
public:
    explicit BusyProbe(Busy& busy) : m_busy(busy) {}
    void run(const ClientQuestion&, std::function<void(Answer)> done) override {
        for (UsageWindow& window : m_busy.reading.windows) {
            window.observedAt = m_busy.clock->at;
        }
        done(m_busy.reading);
    }

private:
    Busy& m_busy;
};

class BusyActivity : public ActivitySource {
public:
    explicit BusyActivity(Busy& busy) : m_busy(busy) {}
    void scan(Instant, std::function<void(Answer)> done) override { m_done = std::move(done); }
    /// Sorted and summed as the background thread does it; only the rest is the main thread's.
    [[nodiscard]] ActivitySummary summary() const { return ActivitySummary(m_busy.replies); }
    void answer(ActivitySummary summary) { std::exchange(m_done, nullptr)(std::move(summary)); }

private:
    Busy& m_busy;
    std::function<void(Answer)> m_done;
};

/// Readings that rise in bursts, as work does.
void writeHistory(const std::filesystem::path& file, const demo::Demo& demo, Instant now, std::size_t samples) {
    std::mt19937 random(7);
    std::exponential_distribution<double> burst(1);
    std::vector<UsageWindow> readings;
    const std::size_t each = samples / demo.windows.size();
    for (const UsageWindow& current : demo.windows) {
        std::vector<double> values(each);
        double sum = 0;
        for (double& value : values) {
            value = sum += random() % 50 == 0 ? 50 * burst(random) : 1e-3;
        }
        const Instant start = *current.resetsAt - current.kind.length();
        for (std::size_t i = 0; i < each; ++i) {
            UsageWindow& reading = readings.emplace_back(current);
            reading.observedAt = start + static_cast<double>(i + 1) / static_cast<double>(each + 1) * (now - start);
            reading.usedPercent = current.usedPercent * values[i] / sum;
        }
    }
    HistoryStore store(file);
    static_cast<void>(store.add(readings, now));
    static_cast<void>(store.flush(now));
}

std::vector<ActivityEvent> busyReplies(const demo::Demo& demo, Instant now, std::size_t count) {
    std::vector<ActivityEvent> replies;
    for (std::size_t i = 0; i < count; ++i) {
        ActivityEvent& event = replies.emplace_back(demo.activity[i * demo.activity.size() / count]);
        event.timestamp = now - 168h * (1 - static_cast<double>(i) / static_cast<double>(count));
    }
    return replies;
}

/// Resident, in megabytes.
double memory() {
    long pages = 0;
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*d %ld", &pages) != 1) {
            pages = 0;
        }
        std::fclose(file);
    }
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

double threadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

QQuickWindow* shownWindow() {
    for (QWindow* const window : QGuiApplication::topLevelWindows()) {
        if (auto* const view = qobject_cast<QQuickWindow*>(window); view && view->isVisible()) {
            return view;
        }
    }
    return nullptr;
}

/// Waits, without using the processor, until no more frames come; milliseconds until the last one.
double letDraw(QQuickWindow& window) {
    double last = 0;
    QElapsedTimer since;
    since.start();
    QEventLoop loop;
    QTimer still;
    still.setSingleShot(true);
    QObject::connect(&still, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&window, &QQuickWindow::frameSwapped, &still, [&] {
        last = static_cast<double>(since.nsecsElapsed()) / 1e6;
        still.start(kStill);
    });
    still.start(kStill);
    loop.exec();
    return last;
}

/// Prints median, least and longest time of the main thread that `happen` and what is then drawn take; the median.
double measure(const char* what, QQuickWindow& window, const std::function<void()>& prepare,
               const std::function<void()>& happen) {
    std::vector<double> whole;
    std::vector<double> computing;
    for (int i = 0; i < kRepetitions; ++i) {
        prepare();
        const double before = threadMilliseconds();
        happen();
        computing.push_back(threadMilliseconds() - before);
        letDraw(window);
        whole.push_back(threadMilliseconds() - before);
    }
    std::ranges::sort(whole);
    std::ranges::sort(computing);
    fmt::print("{:<38} {:6.1f} ms, {:.1f} to {:.1f}; {:.1f} of it before drawing\n", what, whole[whole.size() / 2],
               whole.front(), whole.back(), computing[computing.size() / 2]);
    return whole[whole.size() / 2];
}

/// What the benchmark does to a model.
struct Strings {
    Busy& busy;
    ManualTicker& ticker;
    BusyActivity& activity;
};

void measureRepaints(UsageModel& model, Strings pull, QQuickWindow& window) {
    Busy& busy = pull.busy;
    const auto pass = [&] {
        busy.clock->at += 31s;
    };
    const double timeMoved = measure("recomputation, only the time moved:", window, pass, [&] { model.recompute(); });
    const double newReading = measure(
        "with a new reading:", window,
        [&] {
            pass();
            for (UsageWindow& each : busy.reading.windows) {
                each.usedPercent += 0.3;
            }
        },
        [&] { model.probe(); });
    ActivitySummary summary;
    const double newReplies = measure(
        "with new replies:", window,
        [&] {
            pass();
            pull.ticker.tick();
            busy.replies.push_back(busy.replies.back());
            busy.replies.back().timestamp = busy.clock->at;
            summary = pull.activity.summary();
            letDraw(window);
        },
        [&] { pull.activity.answer(std::move(summary)); });
    const double resize = measure(
        "beside it, a resize by one pixel:", window, [] {},
        [&] { window.resize(window.width(), window.height() % 2 == 0 ? window.height() + 1 : window.height() - 1); });
    const std::pair<const char*, double> rows[] = {
        {"only the time moved", timeMoved}, {"a new reading", newReading}, {"new replies", newReplies}};
    for (const auto& [what, median] : rows) {
        fmt::print(
            "= dashboard: recomputation with its repaint, {} | {:.1f} ms | a resize by one pixel | {:.1f} ms | "
            "{:.2f}\n",
            what, median, resize, median / resize);
    }
}

int run(std::size_t samples, std::size_t replies) {
    const QTemporaryDir directory;
    Preferences preferences(std::make_unique<QSettings>(directory.filePath("settings.ini"), QSettings::IniFormat));
    auto clock = std::make_unique<BenchClock>();
    const Instant now = clock->at;
    const demo::Demo demo = demo::makeDemo(demo::Scenario::atRisk, now);
    Busy busy{.clock = clock.get(),
              .reading = {.windows = demo.windows, .insights = demo.insights},
              .replies = busyReplies(demo, now, replies)};
    auto source = std::make_unique<BusyActivity>(busy);
    auto ticker = std::make_unique<ManualTicker>();
    const Strings pull{.busy = busy, .ticker = *ticker, .activity = *source};
    const std::filesystem::path root = directory.path().toStdString();
    writeHistory(root / "history.jsonl", demo, now, samples);
    UsageModel model(preferences, UsageModel::Parts{.clock = std::move(clock),
                                                    .ticker = std::move(ticker),
                                                    .probe = std::make_unique<BusyProbe>(busy),
                                                    .activity = std::move(source),
                                                    .snapshot = std::make_unique<NoSnapshot>(),
                                                    .history = std::make_unique<HistoryStore>(root / "history.jsonl"),
                                                    .resetPlan = ResetPlanStore(root / "plan.json"),
                                                    .probeRecord = ProbeRecordStore(root / "probe.json")});
    model.start();
    pull.activity.answer(pull.activity.summary());
    while (!model.answer().isJudged) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    DesktopAppearance appearance;
    appearance.setLook({.reducedMotion = true});
    ViewEngine engine(appearance, 0ms);
    const double idle = memory();
    AppRequests requests;
    DashboardWindow window(model, requests, engine);
    double openings[2] = {};
    for (int i = 0; i < 2; ++i) {
        QElapsedTimer timer;
        timer.start();
        window.open();
        const double opened = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        openings[i] = opened + letDraw(*shownWindow());
        if (i == 0) {
            window.close();
            QCoreApplication::processEvents();
        }
    }
    fmt::print("first opening: {:.0f} ms, second: {:.0f} ms\n", openings[0], openings[1]);
    fmt::print("= dashboard: first opening to the first complete frame | {:.0f} ms | the second | {:.0f} ms | {:.2f}\n",
               openings[0], openings[1], openings[0] / openings[1]);
    measureRepaints(model, pull, *shownWindow());
    const double open = memory();
    window.close();
    QElapsedTimer timer;
    timer.start();
    while (engine.isLoaded() && !timer.hasExpired(5000)) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    fmt::print("resident memory: {:.0f} MB before, {:.0f} MB open, {:.0f} MB closed\n", idle, open, memory());
    return 0;
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    vorn::ViewEngine::useSoftwareRendering();
    const QApplication application(argc, argv);
    const auto number = [&](int at, long fallback) {
        return static_cast<std::size_t>(argc > at ? std::atol(argv[at]) : fallback);
    };
    const int status = vorn::run(number(1, 50'000), number(2, 200'000));
    std::fflush(stdout);
    std::_Exit(status);
}
