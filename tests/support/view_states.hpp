#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/model_world.hpp"
#include "tests/support/readings.hpp"

/// Models in every state that a window has to show.
namespace vorn::test {

/// Nothing read yet, at `kNow`.
struct ViewState : ModelWorld {
    ViewState() : ModelWorld(kNow) {}
    /// Starts the model, where that has not happened, and has the client answer.
    void probe(const ProbeSource::Answer& what);
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
