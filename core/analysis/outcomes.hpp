#pragma once

#include <span>
#include <vector>

#include "core/data/history_sample.hpp"
#include "core/data/outcome.hpp"

namespace vorn::VornEngine {

/// What the recorded readings tell of each instance of each limit: when it was first read at its limit, that it was
/// reset early or its reset time moved, and where it landed once its reset lies before `now`. By time; readings that
/// were observed after `now` count as not there, and instances without a reset time are told nothing of.
std::vector<Outcome> outcomes(std::span<const HistorySample> history, Instant now);

}  // namespace vorn::VornEngine
