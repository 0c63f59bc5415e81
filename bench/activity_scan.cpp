// Measures the transcript scan in this process and prints one JSON object.
//
//     activity_scan ROOT --now INSTANT [--lookback-days N] [--rescans N] [--append FILE]
//
// The first scan, then `--rescans` scans with nothing new; with `--append`, as many scans after 10 KB were appended to
// FILE each time, which is put back as it was at the end.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <sys/resource.h>

#include "core/transcripts/local_activity_scanner.hpp"

namespace {

using namespace vorn;

struct Cost {
    double wallMs = 0;
    double cpuMs = 0;
};

double cpuMilliseconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

/// Kilobytes. Not from getrusage, whose maximum includes the process that forked this one.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

template <typename Work>
Cost measure(Work work) {
    const double cpu = cpuMilliseconds();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {.wallMs = wall.count(), .cpuMs = cpuMilliseconds() - cpu};
}

Cost median(std::vector<Cost> costs) {
    if (costs.empty()) {
        return {};
    }
    const auto middle = [&](double Cost::*field) {
        std::ranges::sort(costs, {}, field);
        return costs[costs.size() / 2].*field;
    };
    return {.wallMs = middle(&Cost::wallMs), .cpuMs = middle(&Cost::cpuMs)};
}

std::string json(const Cost& cost) {
    return fmt::format(R"({{"wall_ms":{:.3f},"cpu_ms":{:.3f}}})", cost.wallMs, cost.cpuMs);
}

struct Options {
    std::filesystem::path root;
    Instant now = systemNow();
    double lookbackDays = 7;
    int rescans = 0;
    std::filesystem::path append;
};

Options parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (!name.starts_with("--")) {
            options.root = name;
            continue;
        }
        const std::string& value = arguments.at(++i);
        if (name == "--now") {
            options.now = parseIso8601(value, Fraction::optional).value();
        } else if (name == "--lookback-days") {
            options.lookbackDays = std::stod(value);
        } else if (name == "--rescans") {
            options.rescans = std::stoi(value);
        } else if (name == "--append") {
            options.append = value;
        } else {
            throw std::invalid_argument("unknown option " + name);
        }
    }
    return options;
}

int run(const Options& options) {
    LocalActivityScanner scanner(options.root, std::chrono::days{1} * options.lookbackDays);
    std::vector<ActivityEvent> events;
    const auto scan = [&] {
        events = scanner.scan(options.now);
    };

    const Cost first = measure(scan);
    const long peak = peakMemory();

    std::vector<Cost> rescans;
    std::vector<Cost> appended;
    TokenCounts sum;
    double sixtieths = 0;
    for (const ActivityEvent& event : events) {
        sum += event.tokens;
        sixtieths += event.tokens.weightSixtieths(event.model);
    }
    const std::size_t count = events.size();
    for (int i = 0; i < options.rescans; ++i) {
        rescans.push_back(measure(scan));
        if (!options.append.empty()) {
            const std::string filler(10 * 1024 - 20, 'x');
            std::ofstream(options.append, std::ios::app) << R"({"type":"padding","x":")" << filler << "\"}\n";
            appended.push_back(measure(scan));
        }
    }
    fmt::print(
        R"({{"first":{},"rescan":{},"append":{},"peak_kb":{},"events":{},"input":{},"output":{},"cache_read":{},)"
        R"("cache_write_5m":{},"cache_write_1h":{},"weight_x60":{:.0f}}})"
        "\n",
        json(first), json(median(rescans)), json(median(appended)), peak, count, sum.input, sum.output, sum.cacheRead,
        sum.cacheWrite5m, sum.cacheWrite1h, sixtieths);
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(parse(std::vector<std::string>(argv + 1, argv + argc)));
    } catch (const std::exception& error) {
        std::cerr << "activity_scan: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
