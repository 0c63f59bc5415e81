// Answers the questions of traces with the application's own forecast: traces on standard input, one JSON object a
// line; answers on standard output, likewise. With --clues the numbers that the fitted constants are applied to, as
// binary doubles, for tools/fit-forecast. With --without-activity the events are left out, as for who switched that
// off.

#include <cstdio>
#include <iostream>
#include <span>
#include <string>

#include <fmt/format.h>

#include "bench/forecast/replay.hpp"
#include "core/analysis/forecast/forecast_clues.hpp"

namespace {

using namespace vorn;

void printAnswer(const std::string& id, Instant moment, const bench::Question& question) {
    const auto forecast = VornEngine::forecast(question.window, question.input);
    if (!forecast) {
        return;
    }
    const std::string hitAt = forecast->hitAt ? fmt::format("{:.0f}", secondsSince1970(*forecast->hitAt)) : "null";
    fmt::print(
        "{{\"id\":\"{}\",\"t\":{:.0f},\"k\":\"{}\",\"pHit\":{:.4f},\"p10\":{:.2f},\"p50\":{:.2f},\"p90\":{:.2f},"
        "\"hitAt\":{}}}\n",
        id, secondsSince1970(moment), question.window.kind.key(), forecast->pHit, forecast->p10, forecast->p50,
        forecast->p90, hitAt);
}

/// A row: the trace's place in the input, the moment, 0 for the week and 1 for the session, how many clues follow, the
/// percent used, the clues.
void writeClues(std::size_t trace, Instant moment, const bench::Question& question) {
    if (question.window.usedPercent >= 100) {
        return;
    }
    const auto& input = question.input;
    const auto usual = VornEngine::UsualWeek::of(input.rhythm, input.zone, input.now);
    const VornEngine::Situation situation{.window = question.window,
                                          .history = input.history,
                                          .activity = input.activity,
                                          .rhythm = input.rhythm,
                                          .usual = usual,
                                          .zone = input.zone,
                                          .now = input.now};
    const bool isSession = question.window.kind.isSession();
    const auto clues = isSession ? VornEngine::sessionClues(situation) : VornEngine::weekClues(situation);
    const double head[] = {static_cast<double>(trace), secondsSince1970(moment), isSession ? 1.0 : 0.0,
                           static_cast<double>(clues.values.size()), clues.used};
    std::fwrite(head, sizeof(double), std::size(head), stdout);
    std::fwrite(clues.values.data(), sizeof(double), clues.values.size(), stdout);
}

}  // namespace

int main(int argc, char** argv) try {
    bool isForFitting = false;
    auto local = bench::LocalActivity::on;
    for (const std::string_view option : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        if (option == "--clues") {
            isForFitting = true;
        } else if (option == "--without-activity") {
            local = bench::LocalActivity::off;
        } else {
            fmt::print(stderr, "usage: forecast [--clues] [--without-activity] <traces >answers\n");
            return 64;
        }
    }
    std::string line;
    for (std::size_t number = 0; std::getline(std::cin, line); ++number) {
        const auto trace = bench::parseTrace(line);
        bench::replay(trace, local, [&](const bench::Question& question) {
            // Questions are asked an instant after what may be known ends.
            const Instant moment = question.input.now + std::chrono::milliseconds{1};
            isForFitting ? writeClues(number, moment, question) : printAnswer(trace.id, moment, question);
        });
    }
    return std::fflush(stdout) == 0 ? 0 : 74;
} catch (const std::exception& error) {
    fmt::print(stderr, "forecast: {}\n", error.what());
    return 65;
}
