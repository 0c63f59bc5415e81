#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/support/json_value.hpp"

/// What a status line runs, as far as Vorn's relay is concerned.
namespace vorn {

/// The one form of a command that is Vorn's: the path of the relay in single quotes, then " --chain".
std::string relayCommand(const std::filesystem::path& relay);

/// The relay that a command runs which begins in that form; empty when it does not, or when the path does not end in
/// "/vorn-bridge".
struct LeadingRelay {
    std::filesystem::path relay;
    std::string rest;  ///< What follows " --chain"; empty when the command has exactly Vorn's form.
};
std::optional<LeadingRelay> leadingRelay(std::string_view command);

/// The command of a status line; null when it has none. `statusLine` may be null.
const std::string* commandOf(const JSONValue* statusLine);
/// Whether the command mentions a relay, in whatever way. `command` may be null.
bool mentionsRelay(const std::string* command);

struct StatusLineCommand {
    enum class Kind : std::uint8_t {
        none,        ///< No command, or no status line at all.
        users,       ///< Nothing to do with Vorn.
        relay,       ///< Vorn's own form with the relay of this home.
        otherRelay,  ///< Vorn's own form with another relay.
        filtered,    ///< This home's relay with its output piped on: works, and is the user's.
        wrapped,     ///< Names this home's relay in some other way, so most likely runs it.
        mention,     ///< Mentions a relay, and is none of these.
    };
    Kind kind = Kind::none;
    std::string text{};
    std::filesystem::path relay{};  ///< Whose path the command begins with, where it begins in Vorn's form.
    bool operator==(const StatusLineCommand&) const = default;
};
/// `relay`: that of this home.
StatusLineCommand classify(const JSONValue* statusLine, const std::filesystem::path& relay);

}  // namespace vorn
