#include <optional>

#include <nlohmann/json.hpp>

#include "core/status_line/status_line_integration.hpp"
#include "core/support/json_value.hpp"
#include "fuzz/fuzz_target.hpp"

/// Claude Code's settings, which belong to the user: connected and disconnected again, they say what they said before.
namespace vorn::fuzz {
namespace {

namespace fs = std::filesystem;
using Kind = StatusLineIntegration::State::Kind;

std::optional<JSONValue> parse(std::string_view text) try {
    return JSONValue::parse(text);
} catch (const JSONValue::ParseError& error) {
    requireUtf8(error.what());
    return std::nullopt;
}

/// The members; empty when the settings cannot be read.
std::optional<JSONValue::Object> membersOf(const StatusLineIntegration& integration) try {
    return integration.readSettings();
} catch (const IntegrationError& error) {
    requireUtf8(error.what());
    return std::nullopt;
}

void requireRefused(const StatusLineIntegration& integration, std::string_view before) {
    bool isRefused = false;
    try {
        integration.install(kNow);
    } catch (const IntegrationError&) {
        isRefused = true;
    }
    require(isRefused, "settings that cannot be read are not changed");
    require(readFile(integration.locations().settings) == before, "refused settings are as they were");
}

/// What would be written; empty when the relay could not pass on what the status line holds.
std::optional<StatusLineIntegration::Change> plannedInstall(const StatusLineIntegration& integration) try {
    return integration.plannedInstall();
} catch (const IntegrationError&) {
    return std::nullopt;
}

void requireRoundTrip(const StatusLineIntegration& integration, const JSONValue::Object& before,
                      const StatusLineIntegration::Change& planned) {
    const auto state = integration.state();
    const auto downstream = integration.plannedDownstreamCommand();
    integration.install(kNow);
    require(integration.state().kind == Kind::installed, "after connecting it is connected");
    require(readFile(integration.locations().settings) == planned.after, "connecting writes what was announced");
    require(integration.downstreamCommand() == downstream, "the relay runs the user's command");
    integration.install(kNow);
    require(readFile(integration.locations().settings) == planned.after, "connecting again changes nothing");
    require(integration.downstreamCommand() == downstream, "connecting again keeps the user's command");
    integration.uninstall();
    auto expected = before;
    if (state.kind != Kind::notInstalled) {
        expected.erase("statusLine");  // it was never the user's own
    }
    require(integration.readSettings() == expected, "after disconnecting the settings say what they said");
    require(!fs::exists(integration.locations().record), "after disconnecting there is no record");
}

}  // namespace

void checkInput(std::string_view input) {
    const StatusLineIntegration integration({.settings = scratch("claude/settings.json"),
                                             .record = scratch("integration.json"),
                                             .bridge = "/opt/it's here/vorn-bridge"});
    fs::create_directories(integration.locations().settings.parent_path());
    for (const auto& backup : integration.backups().all()) {
        fs::remove(backup.path);
    }
    fs::remove(integration.locations().record);
    fs::remove(integration.noteFile());
    writeFile(integration.locations().settings, input);

    const auto document = parse(input);
    if (document) {
        const std::string text = document->dump();
        requireUtf8(text);
        require(JSONValue::parse(text) == *document, "a document is the same after a way through text");
        require(JSONValue::parse(text).dump() == text, "text is written in one way");
    }
    const auto members = membersOf(integration);
    require(members.has_value() == (input.empty() || (document && document->object() != nullptr)),
            "settings are one object, or nothing yet");
    const auto planned = plannedInstall(integration);
    require(planned || !members || !nlohmann::json::accept(input), "only what is out of the ordinary is refused");
    if (planned) {
        requireRoundTrip(integration, *members, *planned);
    } else {
        requireRefused(integration, input);
    }
    require(!fs::exists(integration.backup()) || readFile(integration.backup()) == input,
            "the copy holds what the user's file held");
    require(fs::exists(integration.backup()) || !fs::exists(integration.locations().settings) ||
                readFile(integration.locations().settings) == input,
            "no settings of the user's change without a copy");
}

}  // namespace vorn::fuzz
