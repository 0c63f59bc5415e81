#include <chrono>
#include <filesystem>
#include <regex>
#include <string>

#include <benchmark/benchmark.h>

#include "core/support/file.hpp"
#include "core/usage_command/usage_command_parser.hpp"

namespace {

using namespace std::chrono_literals;

const vorn::Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 22h;

/// About 3 KB: the samples, one behind the other.
const std::string& text() {
    static const std::string joined = [] {
        const std::filesystem::path samples(VORN_USAGE_SAMPLES);
        std::string all;
        for (const char* name : {"2.1.197.txt", "2.1.330.txt", "2.1.330-top-lists.txt"}) {
            all += vorn::readFile(samples / name).value();
        }
        return all;
    }();
    return joined;
}

void parseEverything(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(vorn::UsageCommandParser::parse(text(), kNow));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text().size()));
}
BENCHMARK(parseEverything);

/// For scale: the standard library's expressions finding no more than the window lines, without reading any date.
void findWindowLinesWithStdRegex(benchmark::State& state) {
    const std::regex pattern("(^|\n)Current ([^:\n]*):[^\n]*?([0-9]+)%[^\n]*?resets ([^\n]*)",
                             std::regex::ECMAScript | std::regex::optimize);
    for (auto _ : state) {
        for (auto match = std::sregex_iterator(text().begin(), text().end(), pattern); match != std::sregex_iterator();
             ++match) {
            benchmark::DoNotOptimize(match->str(4));
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text().size()));
}
BENCHMARK(findWindowLinesWithStdRegex);

/// One megabyte on one line that nearly matches: what a broken client could cost.
void parseHostileLine(benchmark::State& state) {
    const std::string hostile = "Last 7d\nTop skills: " + std::string(std::size_t{1} << 20U, ' ') + "a\n";
    for (auto _ : state) {
        benchmark::DoNotOptimize(vorn::UsageCommandParser::parse(hostile, kNow));
    }
}
BENCHMARK(parseHostileLine)->Unit(benchmark::kMillisecond);

}  // namespace
