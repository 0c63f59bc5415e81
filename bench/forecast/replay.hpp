#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/analysis/forecast/forecast.hpp"

namespace vorn::bench {

/// What a trace of somebody's use holds; one JSON object a line of the input.
struct Trace {
    std::string id;
    std::string zone;                     ///< IANA name.
    std::vector<HistorySample> readings;  ///< By time.
    std::vector<ActivityEvent> events;    ///< By time; their weight is that of as many input tokens.
    std::vector<Instant> moments;         ///< When there is a question, ascending.
    std::string ask;                      ///< For each: 'w' the week, 's' the session, 'b' both.
};
/// Throws std::runtime_error, which says what is wrong, for a line of another form.
Trace parseTrace(std::string_view line);

struct Question {
    const UsageWindow& window;
    const VornEngine::ForecastInput& input;
};

/// Lives through a trace as the application would: readings enter the history by the store's rules, stay as long as it
/// keeps them, and are learnt from. At each question only what lies before it has been seen. Local activity may be
/// switched off.
enum class LocalActivity : std::uint8_t { on, off };
void replay(const Trace& trace, LocalActivity local, const std::function<void(const Question&)>& answer);

}  // namespace vorn::bench
