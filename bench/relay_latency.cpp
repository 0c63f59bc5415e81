// What the relay adds to a status line: alternating runs of a command on its own and behind the relay, from start to
// end, as Claude Code would see them.
//   relay_latency RELAY [RUNS [COMMAND]]
// The command is `cat >/dev/null` when none is given. Uses a directory of its own below TMPDIR.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr const char* kCat = "cat >/dev/null";
constexpr std::string_view kTurnPrefix = "turn-";

struct Variant {
    const char* name;
    std::vector<std::string> arguments;
    std::string input;
    bool isTurn = false;  ///< Each run is told of another turn; else the status line is only drawn again.
    std::vector<double> milliseconds{};
};

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// Of the same length, since it counts from a million.
void takeNextTurn(std::string& input) {
    constexpr std::size_t kDigits = 7;
    const auto number = input.find(kTurnPrefix) + kTurnPrefix.size();
    input.replace(number, kDigits, std::to_string(std::stol(input.substr(number, kDigits)) + 1));
}

/// As long as a real one, with limits or without.
std::string sampleInput(bool withLimits) {
    nlohmann::json input = {{"session_id", "3ccd71b7-039b-4e7d-a37d-d0ec4587a01a"},
                            {"version", "2.1.330"},
                            {"model", {{"id", "claude-opus-5-5"}, {"display_name", "Opus 5.5"}}},
                            {"prompt_id", "turn-1000000"},
                            {"transcript_path", std::string(900, 'p')}};
    if (withLimits) {
        input["rate_limits"] = {{"five_hour", {{"used_percentage", 23.4}, {"resets_at", 1795385906}}},
                                {"seven_day", {{"used_percentage", 61.2}, {"resets_at", 1795664906}}}};
    }
    return input.dump();
}

/// From before the start to after the end, the input being there at once.
Milliseconds run(const Variant& variant) {
    std::array<int, 2> ends{};
    require(::pipe2(ends.data(), O_CLOEXEC) == 0, "no pipe");
    require(::write(ends[1], variant.input.data(), variant.input.size()) == static_cast<ssize_t>(variant.input.size()),
            "input does not fit a pipe");
    ::close(ends[1]);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    std::vector<char*> arguments;
    for (const std::string& argument : variant.arguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));  // what posix_spawn asks for
    }
    arguments.push_back(nullptr);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    require(::posix_spawn(&child, arguments.front(), &actions, nullptr, arguments.data(), environ) == 0, "no process");
    int status = 0;
    ::waitpid(child, &status, 0);
    const auto end = std::chrono::steady_clock::now();

    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[0]);
    require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "the command failed");
    return end - start;
}

/// The value that `share` (0..1) of the others lie below.
double quantile(std::vector<double> values, double share) {
    const auto rank = values.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(values.size()) * share);
    std::ranges::nth_element(values, rank);
    return *rank;
}

void print(const std::vector<Variant>& variants, double share, const std::string& title) {
    const double cat = quantile(variants[0].milliseconds, share);
    const double alone = quantile(variants[1].milliseconds, share);
    fmt::print("{:<36}{:>10}{:>18}{:>14}\n", title, "ms", "over the command", "times cat");
    for (const Variant& variant : variants) {
        const double own = quantile(variant.milliseconds, share);
        fmt::print("{:<36}{:>10.3f}{:>+18.3f}{:>14.2f}\n", variant.name, own, own - alone, own / cat);
    }
}

/// For the table of bench/run: what each adds to the command, and what it takes of what comes after it.
void printRows(const std::vector<Variant>& variants) {
    const double alone = quantile(variants[1].milliseconds, 0.5);
    for (std::size_t i = 2; i < variants.size() - 1; ++i) {
        const double added = quantile(variants[i].milliseconds, 0.5) - alone;
        fmt::print("= status line: {} | +{:.2f} ms | the command alone | {:.2f} ms | {:.2f}\n", variants[i].name, added,
                   alone, added / alone);
    }
}

fs::path ownDirectory() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

void measure(const fs::path& relay, int runs, const std::string& command, const fs::path& home) {
    const nlohmann::json record = {{"installedAt", "2026-11-22T20:45:00Z"},
                                   {"originalStatusLine", {{"type", "command"}, {"command", command}}}};
    fs::create_directories(home);
    std::ofstream(home / "integration.json") << record;
    ::setenv("VORN_HOME", home.c_str(), 1);

    const std::string limits = sampleInput(true);
    std::vector<Variant> variants{
        {"sh -c 'cat >/dev/null'", {"/bin/sh", "-c", kCat}, limits},
        {"the command alone", {"/bin/sh", "-c", command}, limits},
        {"behind an empty static program", {ownDirectory() / "start_shell", command}, limits},
        {"relay, nothing to store", {relay, "--chain"}, sampleInput(false)},
        {"relay, drawn again", {relay, "--chain"}, limits},
        {"relay, storing", {relay, "--chain"}, limits, true},
        {"relay, storing, started by a shell", {"/bin/sh", "-c", "'" + relay.string() + "' --chain"}, limits, true},
    };
    constexpr int kWarmUp = 20;
    for (int i = -kWarmUp; i < runs; ++i) {
        for (Variant& variant : variants) {
            if (variant.isTurn) {
                takeNextTurn(variant.input);
            }
            const Milliseconds taken = run(variant);
            if (i >= 0) {
                variant.milliseconds.push_back(taken.count());
            }
        }
    }
    print(variants, 0.5, fmt::format("median of {}", runs));
    printRows(variants);
    // Closer to what it costs where other work disturbs the runs.
    print(variants, 0.1, "fastest tenth");
    require(fs::file_size(home / "statusline.json") > 0, "nothing was stored");
}

}  // namespace

int main(int argc, char** argv) try {
    require(argc >= 2, "usage: relay_latency RELAY [RUNS [COMMAND]]");
    std::string home = (fs::temp_directory_path() / "relay-latency-XXXXXX").string();
    require(::mkdtemp(home.data()) != nullptr, "no directory");
    measure(fs::absolute(argv[1]), argc > 2 ? std::atoi(argv[2]) : 200, argc > 3 ? argv[3] : kCat, home);
    fs::remove_all(home);
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "relay_latency: {}\n", error.what());
    return 1;
}
