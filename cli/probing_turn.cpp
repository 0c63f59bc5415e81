#include "cli/probing_turn.hpp"

#include <filesystem>

#include <poll.h>

#include "cli/runtime_file.hpp"
#include "core/data/vorn_paths.hpp"

namespace vorn::cli {
namespace {

constexpr std::chrono::milliseconds kPoll{50};

/// At once. `error` tells whether another has it or nobody can.
std::optional<FileLock> tryTurn(const std::filesystem::path& file, std::error_code& error) {
    return FileLock::acquire(file, std::chrono::milliseconds{0}, error);
}

/// In Vorn's folder, else among the user's runtime files.
std::optional<FileLock> tryTurn(std::error_code& error) {
    try {
        VornPaths::ensureRoot();
        auto turn = tryTurn(VornPaths::probingLock(), error);
        if (turn || error == std::errc::device_or_resource_busy) {
            return turn;
        }
    } catch (const std::filesystem::filesystem_error& failure) {
        error = failure.code();
    }
    const auto file = makeRuntimeFile(".probing.lock");
    return file ? tryTurn(*file, error) : std::nullopt;
}

}  // namespace

std::optional<FileLock> takeProbingTurn(std::chrono::seconds patience, const Cancellation& cancellation) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        std::error_code error;
        auto turn = tryTurn(error);
        if (turn || error != std::errc::device_or_resource_busy || std::chrono::steady_clock::now() >= deadline) {
            return turn;
        }
        pollfd cancelled{.fd = cancellation.descriptor(), .events = POLLIN, .revents = 0};
        ::poll(&cancelled, 1, static_cast<int>(kPoll.count()));
        if (cancellation.isCancelled()) {
            throw Cancelled();
        }
    }
}

}  // namespace vorn::cli
