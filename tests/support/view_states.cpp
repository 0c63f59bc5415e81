#include "tests/support/view_states.hpp"

#include <QSettings>
#include <algorithm>

#include <gmock/gmock.h>

#include "core/sources/probe_error.hpp"
#include "tests/support/qt_warnings.hpp"

namespace vorn::test {
namespace {

class StateClock : public ModelClock {
public:
    explicit StateClock(const ViewState& state) : m_state(state) {}
    [[nodiscard]] Instant now() const override { return m_state.now; }

private:
    const ViewState& m_state;
};

class StateProbe : public ProbeSource {
public:
    explicit StateProbe(const ViewState& state) : m_state(state) {}
    void run(const std::string&, std::function<void(Answer)> done) override {
        if (m_state.answer) {
            done(*m_state.answer);
        }
    }

private:
    const ViewState& m_state;
};

std::string message(ProbeError::Kind kind, const char* payload = "") {
    return ProbeError(kind, payload).what();
}

UsageCommandParser::Result readings(std::vector<UsageWindow> windows) {
    return {.windows = std::move(windows)};
}

void demonstrate(ViewState& state, demo::Scenario scenario) {
    state.model->startDemo(demo::makeDemo(scenario, state.now));
}

void readTwoWindows(ViewState& state) {
    state.probe(readings({reading(WindowKind::session(), 38, 2.5h), reading(WindowKind::week(), 41, 80h)}));
}

}  // namespace

ViewState::ViewState()
    : preferences(std::make_unique<Preferences>(
          std::make_unique<QSettings>(QString::fromStdString(directory / "settings.ini"), QSettings::IniFormat))),
      model(std::make_unique<UsageModel>(
          *preferences, UsageModel::Parts{.clock = std::make_unique<StateClock>(*this),
                                          .probe = std::make_unique<StateProbe>(*this),
                                          .history = std::make_unique<HistoryStore>(directory / "history.jsonl"),
                                          .resetPlan = ResetPlanStore(directory / "plan.json"),
                                          .probeRecord = ProbeRecordStore(directory / "probe.json")})) {}

void ViewState::probe(ProbeSource::Answer what) {
    answer = std::move(what);
    model->probe();
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
    states.push_back({"starting", [](ViewState&) {
                      }});
    states.push_back({"probing", [](ViewState& state) {
                          readTwoWindows(state);
                          state.answer.reset();
                          state.model->probe();
                      }});
    states.push_back({"failed", [](ViewState& state) {
                          state.probe(message(ProbeError::Kind::claudeNotFound));
                      }});
    states.push_back({"failed-at-length", [](ViewState& state) {
                          state.probe(message(ProbeError::Kind::commandFailed,
                                              "error: unknown option '--safe-mode'\nUsage: claude [options]"));
                      }});
    states.push_back({"no-limits", [](ViewState& state) {
                          state.probe(readings({}));
                      }});
    states.push_back({"stale", [](ViewState& state) {
                          readTwoWindows(state);
                          state.now += 25min;
                          state.probe(message(ProbeError::Kind::timedOut));
                      }});
    states.push_back({"stale-at-length", [](ViewState& state) {
                          readTwoWindows(state);
                          state.now += 26h;
                          state.probe(message(ProbeError::Kind::unrecognizedOutput, "Current session\n  0% used"));
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
