#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <unistd.h>

#include "core/data/vorn_paths.hpp"
#include "core/status_line/integration_record.hpp"
#include "core/status_line/relayed_turn.hpp"
#include "core/support/executable_path.hpp"
#include "relay/signal_ignored.hpp"
#include "relay/standard_input.hpp"

namespace vorn::relay {
namespace {

constexpr const char* kHelp =
    "Usage: vorn-bridge [--chain]\n"
    "\n"
    "Vorn's status-line relay. Claude Code runs it after every turn in place of your own\n"
    "status-line command: it notes the rate limits that arrive on standard input, then runs\n"
    "your command on the same input. Without one it prints nothing.\n"
    "\n"
    "  --chain    how Claude Code's settings call it; no other argument counts then\n"
    "  --help     print this\n"
    "  --version  print the version\n"
    "\n"
    "`vornctl connect` puts it in place, `vornctl disconnect` restores your own command.\n";

/// What to print instead of relaying; null to relay.
const char* explanation(int count, char** arguments) {
    const char* text = nullptr;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--chain") {
            return nullptr;
        }
        if (argument == "--help" || argument == "-h") {
            text = kHelp;
        } else if (argument == "--version") {
            text = "vorn-bridge " VORN_VERSION "\n";
        }
    }
    return text;
}

/// The copy in use lies in the directory that it was connected for, which Claude Code need not have been told.
void chooseDirectory() noexcept try {
    const std::filesystem::path folder = runningExecutable().parent_path();
    const std::filesystem::path root = folder.parent_path();
    const auto isConnectedFrom = [&root] {
        const auto record = root / VornPaths::integrationRecord().filename();
        return ::access(record.c_str(), F_OK) == 0;
    };
    if (folder.filename() == VornPaths::bridgeExecutable().parent_path().filename() && isConnectedFrom()) {
        VornPaths::setRootOverride(root);
    }
} catch (...) {
    // Then it is the usual one.
}

void keepTurn(std::string_view input) noexcept {
    // A file that may grow no further would otherwise end the process, and with it the status line.
    const SignalIgnored noLimitSignal(SIGXFSZ);
    leaveTurn(input, systemNow());
}

std::optional<std::string> commandToRun() noexcept try {
    auto command = downstreamCommand(VornPaths::integrationRecord());
    // A text with a zero byte in it never was a command that could run.
    return command && command->find('\0') == std::string::npos ? std::move(command) : std::nullopt;
} catch (...) {
    return std::nullopt;
}

/// As Claude Code itself would have run it; from here on this process is the command.
[[noreturn]] void become(const std::string& command) noexcept {
    constexpr const char* kShell = "/bin/sh";
    constexpr int kCannotRun = 127;
    ::execl(kShell, kShell, "-c", command.c_str(), static_cast<char*>(nullptr));
    ::_exit(kCannotRun);
}

int relay() noexcept {
    chooseDirectory();
    // Before anything else takes a descriptor: there may be few.
    const auto command = commandToRun();
    StandardInput input;
    if (const auto bytes = input.whole()) {
        keepTurn(*bytes);
    }
    if (!command) {
        input.drain();
        return 0;
    }
    input.handOn();
    become(*command);
}

}  // namespace
}  // namespace vorn::relay

int main(int argc, char** argv) {
    if (const char* text = vorn::relay::explanation(argc, argv)) {
        return std::fputs(text, stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    return vorn::relay::relay();
}
