#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

/// Models in every state that a window has to show.
namespace vorn::test {

struct ViewState {
    TemporaryDirectory directory;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<UsageModel> model;
    /// What the next probe answers; without, it goes on for ever.
    std::optional<ProbeSource::Answer> answer;
    Instant now = kNow;

    /// Nothing read yet.
    ViewState();
    /// Waits for what is being written, which would otherwise make its directory once more.
    ~ViewState() { model->shutDown(); }
    ViewState(const ViewState&) = delete;
    ViewState& operator=(const ViewState&) = delete;
    void probe(ProbeSource::Answer what);
};

struct NamedViewState {
    std::string name;
    std::function<void(ViewState&)> enter;
};

/// The demonstrations and whatever they do not show.
std::vector<NamedViewState> allViewStates();

/// Calls `use(name, model)` with each of them, in which Qt must not warn of anything.
void forEachViewState(const std::function<void(const std::string&, UsageModel&)>& use);

/// The demonstration at risk with `count` windows, one of them with a very long name.
demo::Demo demoWithWindows(std::size_t count, Instant now);

}  // namespace vorn::test
