#pragma once

#include "core/analysis/answer.hpp"
#include "demo/demo.hpp"

/// Demonstrations for every surface: what is invented goes the same way as what was read.
namespace vorn::demo {

/// Marked as a demonstration, with rates from the invented activity. `history` is of `demo.history` and must outlive
/// the result.
Evidence evidence(const Demo& demo, const HistoryIndex& history);

Answer answer(const Demo& demo, Instant now);

}  // namespace vorn::demo
