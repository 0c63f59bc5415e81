#include "core/status_line/status_line_command.hpp"

#include <system_error>

#include "core/status_line/integration_record.hpp"
#include "core/support/file.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kChain = " --chain";
/// A single quote inside single quotes: end them, a quote of its own, begin them again.
constexpr std::string_view kInnerQuote = "'\\''";

/// As one word of the shell.
std::string shellWord(std::string_view text) {
    std::string word = "'";
    for (const char c : text) {
        if (c == '\'') {
            word += kInnerQuote;
        } else {
            word += c;
        }
    }
    return word + "'";
}

/// Takes a word that `shellWord` wrote from the front of `text`.
std::optional<std::string> takeQuoted(std::string_view& text) {
    if (!text.starts_with('\'')) {
        return std::nullopt;
    }
    std::string word;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] != '\'') {
            word += text[i];
        } else if (text.substr(i).starts_with(kInnerQuote)) {
            word += '\'';
            i += kInnerQuote.size() - 1;
        } else {
            text.remove_prefix(i + 1);
            return word;
        }
    }
    return std::nullopt;
}

/// Links may lead to one relay by several paths.
bool isSameRelay(const fs::path& one, const fs::path& other) {
    std::error_code ignored;
    return one == other || fs::equivalent(one, other, ignored);
}

/// Whether the path stands in the command, with the home directory written out or in one of the shell's short forms.
bool namesPath(const std::string& command, const fs::path& path) {
    const std::string text = path.string();
    const std::string home = homeDirectory().string();
    if (command.find(text) != std::string::npos || command.find(shellWord(text)) != std::string::npos) {
        return true;
    }
    if (home.size() < 2 || !text.starts_with(home + "/")) {
        return false;
    }
    const std::string below = text.substr(home.size());
    for (const char* const start : {"~", "$HOME", "${HOME}", "\"$HOME\"", "\"${HOME}\""}) {
        if (command.find(start + below) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool isPipe(std::string_view rest) {
    const std::size_t first = rest.find_first_not_of(" \t");
    return first != std::string_view::npos && rest[first] == '|';
}

}  // namespace

std::string relayCommand(const fs::path& relay) {
    return shellWord(relay.string()).append(kChain);
}

std::optional<LeadingRelay> leadingRelay(std::string_view command) {
    const auto path = takeQuoted(command);
    if (!path || !command.starts_with(kChain) || !path->ends_with(std::string("/") + kBridgeName)) {
        return std::nullopt;
    }
    return LeadingRelay{.relay = *path, .rest = std::string(command.substr(kChain.size()))};
}

const std::string* commandOf(const JSONValue* statusLine) {
    const JSONValue* command = statusLine == nullptr ? nullptr : statusLine->member("command");
    return command == nullptr ? nullptr : command->string();
}

bool mentionsRelay(const std::string* command) {
    return command != nullptr && command->find(kBridgeName) != std::string::npos;
}

StatusLineCommand classify(const JSONValue* statusLine, const fs::path& relay) {
    using Kind = StatusLineCommand::Kind;
    const std::string* command = commandOf(statusLine);
    if (command == nullptr) {
        return {};
    }
    if (*command == relayCommand(relay)) {
        return {.kind = Kind::relay, .text = *command, .relay = relay};
    }
    if (!mentionsRelay(command)) {
        return {.kind = Kind::users, .text = *command};
    }
    const auto leading = leadingRelay(*command);
    if (leading && leading->rest.empty()) {
        return {.kind = isSameRelay(leading->relay, relay) ? Kind::relay : Kind::otherRelay,
                .text = *command,
                .relay = leading->relay};
    }
    if (leading && isPipe(leading->rest) && isSameRelay(leading->relay, relay)) {
        return {.kind = Kind::filtered, .text = *command, .relay = leading->relay};
    }
    return {.kind = namesPath(*command, relay) ? Kind::wrapped : Kind::mention, .text = *command};
}

}  // namespace vorn
