#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "core/data/history/history_line.hpp"
#include "core/data/history/history_store.hpp"
#include "core/support/file.hpp"

namespace {

using namespace vorn;
namespace fs = std::filesystem;

constexpr Seconds kTurn{13.8};  // one reading a turn: 50,000 samples in eight days

std::vector<HistorySample> madeUpSamples(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> tenths(0, 1000);
    std::vector<HistorySample> samples;
    Instant observed{Seconds{1795000000.25}};
    for (std::size_t i = 0; i < count; ++i) {
        observed += kTurn;
        const char* key = i % 3 == 0 ? "session" : i % 3 == 1 ? "week" : "week:Opus";
        samples.push_back({key, tenths(random) / 10.0, observed + Seconds{3600}, observed});
    }
    return samples;
}

/// A history file that is removed with the object.
class HistoryOf {
public:
    explicit HistoryOf(std::size_t count) {
        std::string lines;
        for (const HistorySample& sample : madeUpSamples(count)) {
            appendHistoryLine(lines, sample);
        }
        replaceFile(m_path, lines);
    }
    ~HistoryOf() { fs::remove(m_path); }
    HistoryOf(const HistoryOf&) = delete;
    HistoryOf& operator=(const HistoryOf&) = delete;
    [[nodiscard]] const fs::path& path() const { return m_path; }

private:
    fs::path m_path = fs::temp_directory_path() / ("vorn-history-bench." + std::to_string(::getpid()));
};

void load(benchmark::State& state) {
    const HistoryOf history(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(HistoryStore(history.path()).all());
    }
}
BENCHMARK(load)->Arg(1000)->Arg(50'000)->Unit(benchmark::kMillisecond);

void readTheBytesOnly(benchmark::State& state) {
    const HistoryOf history(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(readFile(history.path()));
    }
}
BENCHMARK(readTheBytesOnly)->Arg(50'000)->Unit(benchmark::kMillisecond);

void parseWithATree(benchmark::State& state) {
    const HistoryOf history(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::istringstream lines(*readFile(history.path()));
        std::vector<HistorySample> samples;
        for (std::string line; std::getline(lines, line);) {
            const auto value = nlohmann::json::parse(line);
            samples.push_back({value["k"], value["u"], instantSince1970(value["r"]), instantSince1970(value["t"])});
        }
        benchmark::DoNotOptimize(samples);
    }
}
BENCHMARK(parseWithATree)->Arg(50'000)->Unit(benchmark::kMillisecond);

void record(benchmark::State& state) {
    const HistoryOf history(static_cast<std::size_t>(state.range(0)));
    HistoryStore store(history.path());
    Instant now = store.all().back().observedAt;
    double used = 0;
    for (auto _ : state) {
        now += kTurn;
        used += 0.5;
        const UsageWindow window{WindowKind::session(), used, {}, now};
        store.record({&window, 1}, now);
    }
}
BENCHMARK(record)->Arg(50'000)->Iterations(10'000)->Unit(benchmark::kMicrosecond);

void rewrite(benchmark::State& state) {
    const HistoryOf history(static_cast<std::size_t>(state.range(0)));
    const HistoryFile file(history.path(), HistoryStore::defaultPatience);
    auto readings = file.read();
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.rewrite(readings, readings.samples().front().observedAt));
    }
}
BENCHMARK(rewrite)->Arg(50'000)->Unit(benchmark::kMillisecond);

void newest(benchmark::State& state) {
    const auto samples = madeUpSamples(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(newestCurrent(samples, samples.back().observedAt));
    }
}
BENCHMARK(newest)->Arg(50'000)->Unit(benchmark::kMillisecond);

}  // namespace
