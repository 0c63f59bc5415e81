// How long the dashboard takes to open and to show news, with 50,000 readings and 200,000 replies:
//
//     QT_QPA_PLATFORM=offscreen build/bench/bench/dashboard_open [samples] [replies]
//
// Prints milliseconds to the first complete frame (the charts included), for the first and for a second opening, and
// the main thread's time for a recomputation with its repaint, and resident memory before, with and after the window.
#include <QApplication>
#include <QElapsedTimer>
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

#include <fmt/format.h>
#include <unistd.h>

#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "demo/demo.hpp"
#include "platform/desktop_appearance.hpp"
#include "ui/views/dashboard_window.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

/// No frame for so long: everything is drawn.
constexpr std::chrono::milliseconds kStill = 150ms;
constexpr int kRecomputations = 50;

class BenchClock : public ModelClock {
public:
    [[nodiscard]] Instant now() const override { return at; }
    Instant at = systemNow();
};

/// The demonstration's windows with as much history and activity as a very busy user has.
demo::Demo busyDemo(Instant now, std::size_t samples, std::size_t replies) {
    demo::Demo demo = demo::makeDemo(demo::Scenario::atRisk, now);
    demo.history.clear();
    for (std::size_t i = 0; i < samples; ++i) {
        UsageWindow window = demo.windows[i % demo.windows.size()];
        const double share = static_cast<double>(i) / static_cast<double>(samples);
        const Instant start = *window.resetsAt - window.kind.length();
        window.observedAt = start + share * (now - start);
        window.usedPercent *= share;
        demo.history.push_back(HistorySample::of(window));
    }
    std::ranges::stable_sort(demo.history, {}, &HistorySample::observedAt);
    const std::vector<ActivityEvent> events = demo.activity;
    demo.activity.clear();
    for (std::size_t i = 0; i < replies; ++i) {
        ActivityEvent event = events[i * events.size() / replies];
        event.timestamp = now - 168h * (1 - static_cast<double>(i) / static_cast<double>(replies));
        demo.activity.push_back(std::move(event));
    }
    return demo;
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

/// Runs until no more frames come; milliseconds of `since` at the last one.
double settle(const QElapsedTimer& since) {
    double last = 0;
    for (QElapsedTimer still = since; !still.hasExpired(kStill.count());) {
        for (QWindow* const window : QGuiApplication::topLevelWindows()) {
            if (auto* const view = qobject_cast<QQuickWindow*>(window)) {
                QObject::connect(
                    view, &QQuickWindow::frameSwapped, qApp,
                    [&] {
                        last = static_cast<double>(since.nsecsElapsed()) / 1e6;
                        still.restart();
                    },
                    Qt::SingleShotConnection);
            }
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return last;
}

int run(std::size_t samples, std::size_t replies) {
    const QTemporaryDir directory;
    Preferences preferences(std::make_unique<QSettings>(directory.filePath("settings.ini"), QSettings::IniFormat));
    auto clock = std::make_unique<BenchClock>();
    BenchClock& time = *clock;
    const std::filesystem::path root = directory.path().toStdString();
    UsageModel model(preferences, UsageModel::Parts{.clock = std::move(clock),
                                                    .history = std::make_unique<HistoryStore>(root / "history.jsonl"),
                                                    .resetPlan = ResetPlanStore(root / "plan.json"),
                                                    .probeRecord = ProbeRecordStore(root / "probe.json")});
    model.startDemo(busyDemo(time.at, samples, replies));
    DesktopAppearance appearance;
    appearance.setLook({.reducedMotion = true});
    ViewEngine engine(appearance, 0ms);
    const double idle = memory();
    DashboardWindow window(model, engine);
    for (const char* const which : {"first", "second"}) {
        QElapsedTimer timer;
        timer.start();
        window.open();
        fmt::print("{} opening: {:.0f} ms\n", which, settle(timer));
        if (which == std::string_view("first")) {
            window.close();
            QCoreApplication::processEvents();
        }
    }
    double total = 0;
    double longest = 0;
    for (int i = 0; i < kRecomputations; ++i) {
        time.at += 5s;
        const double before = threadMilliseconds();
        model.recompute();
        const double computed = threadMilliseconds() - before;
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(60)) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
        }
        total += computed;
        longest = std::max(longest, threadMilliseconds() - before);
    }
    fmt::print("recomputation: {:.1f} ms; with its repaint at most {:.1f} ms\n", total / kRecomputations, longest);
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
