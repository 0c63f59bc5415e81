#include "tests/support/view_states.hpp"

#include <algorithm>
#include <utility>

#include <gmock/gmock.h>

#include "tests/support/qt_warnings.hpp"

namespace vorn::test {
namespace {

using Kind = ProbeFailure::Kind;

ClientAnswer readings(std::vector<UsageWindow> windows) {
    return {.windows = std::move(windows)};
}

void demonstrate(ViewState& state, demo::Scenario scenario) {
    state.model->startDemo(demo::makeDemo(scenario, state.now));
}

std::vector<UsageWindow> twoWindows() {
    return {reading(WindowKind::session(), 38, 2.5h), reading(WindowKind::week(), 41, 80h)};
}

void readTwoWindows(ViewState& state) {
    state.probe(readings(twoWindows()));
}

}  // namespace

void ViewState::probe(const ProbeSource::Answer& what) {
    if (!tick) {
        start();
    }
    if (unansweredProbe) {
        std::exchange(unansweredProbe, nullptr)(what);
        return;
    }
    client = [what] {
        return what;
    };
    model->probe();
    client = nullptr;
}

demo::Demo demoWithWindows(std::size_t count, Instant now) {
    constexpr struct {
        const char* name;
        double used;
    } kModels[] = {
        {"Haiku", 0}, {"Research preview", 100}, {"Sonnet 5 with extended thinking and a million tokens", 12}};
    demo::Demo demo = demo::makeDemo(demo::Scenario::atRisk, now);
    const auto week = std::ranges::find(demo.windows, WindowKind::week(), &UsageWindow::kind);
    for (const auto& [name, used] : kModels) {
        if (demo.windows.size() < count && week != demo.windows.end()) {
            UsageWindow window = demo.windows[1];
            window.kind = WindowKind::weekModel(name);
            window.usedPercent = used;
            demo.windows.push_back(std::move(window));
        }
    }
    std::ranges::sort(demo.windows, {}, &UsageWindow::kind);
    demo.windows.resize(std::min(count, demo.windows.size()), demo.windows.front());
    return demo;
}

std::vector<NamedViewState> allViewStates() {
    std::vector<NamedViewState> states;
    states.reserve(demo::allScenarios.size());
    for (const demo::Scenario scenario : demo::allScenarios) {
        states.push_back({demo::name(scenario), [scenario](ViewState& state) {
                              demonstrate(state, scenario);
                          }});
    }
    states.push_back({"starting", [](ViewState& state) {
                          state.start();
                      }});
    states.push_back({"unjudged", [](ViewState& state) {
                          state.client = [] {
                              return readings(twoWindows());
                          };
                          state.model->probe();
                      }});
    states.push_back({"probing", [](ViewState& state) {
                          readTwoWindows(state);
                          state.model->probe();
                      }});
    states.push_back({"failed", [](ViewState& state) {
                          state.probe(ProbeFailure{.kind = Kind::claudeNotFound});
                      }});
    states.push_back({"failed-at-length", [](ViewState& state) {
                          state.probe(
                              ProbeFailure{.kind = Kind::commandFailed,
                                           .detail = "error: unknown option '--safe-mode'\nUsage: claude [options]"});
                      }});
    states.push_back({"no-limits", [](ViewState& state) {
                          state.probe(readings({}));
                      }});
    states.push_back({"failed-unread", [](ViewState& state) {
                          state.probe(ProbeFailure{.kind = Kind::unrecognizedOutput,
                                                   .detail = "Welcome to Claude Code!\n\nChoose a theme to begin."});
                      }});
    states.push_back({"stale", [](ViewState& state) {
                          readTwoWindows(state);
                          state.now += 25min;
                          state.probe(ProbeFailure{.kind = Kind::timedOut});
                      }});
    states.push_back({"stale-at-length", [](ViewState& state) {
                          readTwoWindows(state);
                          state.now += 26h;
                          state.probe(
                              ProbeFailure{.kind = Kind::unrecognizedOutput, .detail = "Current session\n  0% used"});
                      }});
    states.push_back({"not-started", [](ViewState& state) {
                          UsageWindow session = reading(WindowKind::session(), 0, 0s);
                          session.resetsAt.reset();
                          state.probe(readings({session, reading(WindowKind::week(), 18, 5.9 * 24h)}));
                      }});
    states.push_back({"no-reset-time", [](ViewState& state) {
                          UsageWindow session = reading(WindowKind::session(), 64, 0s);
                          session.resetsAt.reset();
                          state.probe(readings({session}));
                      }});
    for (const std::size_t count : {1UL, 4UL, 6UL}) {
        states.push_back({std::to_string(count) + "-windows", [count](ViewState& state) {
                              state.model->startDemo(demoWithWindows(count, state.now));
                          }});
    }
    return states;
}

void forEachViewState(const std::function<void(const std::string&, UsageModel&)>& use) {
    for (const auto& [name, enter] : allViewStates()) {
        SCOPED_TRACE(name);
        const Warnings warnings;
        ViewState state;
        enter(state);
        use(name, *state.model);
        EXPECT_THAT(Warnings::texts(), testing::IsEmpty());
    }
}

}  // namespace vorn::test
