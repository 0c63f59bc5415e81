#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/support/time.hpp"

/// What the targets share. Each target is one file that defines `checkInput`; fuzz_target.cpp hands that to libFuzzer,
/// and replay.cpp to the corpus.
namespace vorn::fuzz {

/// Reads `input` the way the program would and ends the process when what came out breaks a promise.
void checkInput(std::string_view input);

/// The moment of every input.
inline constexpr Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + std::chrono::hours{20};

/// Ends the process, with `promise` on standard error, unless it holds.
void require(bool holds, const char* promise);
void requireUtf8(std::string_view text);

/// A place in this process's own directory, which is made where the system keeps temporary files (fuzz/run: in memory),
/// and removed at the end.
std::filesystem::path scratch(std::string_view name);
/// Puts `content` in the file's place without ceremony.
void writeFile(const std::filesystem::path& file, std::string_view content);

}  // namespace vorn::fuzz
