#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/support/descriptor.hpp"

/// Requests between the programs of one user on one machine: a line there, a line back, over a socket in a directory
/// that nobody else can enter.
namespace vorn {

/// The most bytes that a line may have, without its end.
inline constexpr std::size_t kLongestRequest = std::size_t{64} << 10U;

/// Where the program listens that keeps its files in `home`: in "vorn" in `XDG_RUNTIME_DIR`, else in "vorn-" and the
/// user's number among the temporary files. The name is short and the same for every spelling of `home`. Empty when
/// there is no such directory or it may be another user's. Says nothing about whether anybody listens there.
std::optional<std::filesystem::path> findLocalSocket(const std::filesystem::path& home);

/// `findLocalSocket` for the program that is going to listen: makes the directory where it is missing. Throws
/// std::filesystem::filesystem_error.
std::filesystem::path makeLocalSocketPlace(const std::filesystem::path& home);

/// Sends the line and returns the answer, neither with its line break. Empty when nobody listens, or does not answer in
/// time. Any thread; never raises SIGPIPE.
std::optional<std::string> sendRequest(const std::filesystem::path& socket, std::string_view line,
                                       std::chrono::milliseconds timeout);

/// A socket to listen at, in the place of whatever was left there; it does not block. Throws std::system_error.
Descriptor listenAt(const std::filesystem::path& socket);

/// The next connection, which does not block; not open, with `errno` set, when there is none.
Descriptor acceptFrom(const Descriptor& listener);

/// Answers and closes the connection: what does not fit the socket's buffer (some kilobytes do) is not waited for.
void answer(const Descriptor& connection, std::string_view line);

}  // namespace vorn
