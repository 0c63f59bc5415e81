#include "core/sources/integration_record.hpp"

#include <nlohmann/json.hpp>

#include "core/sources/status_line_integration.hpp"
#include "fuzz/fuzz_target.hpp"

/// The record of the user's own status line, which the relay and the integration read each in its own way.
namespace vorn::fuzz {

void checkInput(std::string_view input) {
    const StatusLineIntegration integration(
        {.settings = scratch("settings.json"), .record = scratch("integration.json"), .bridge = "/opt/vorn-bridge"});
    writeFile(integration.locations().record, input);
    const auto command = downstreamCommand(integration.locations().record);
    requireUtf8(command.value_or(""));
    require(!command || command->find("vorn-bridge") == std::string::npos, "the relay never calls itself");
    const auto record = integration.readRecord();
    if (!record) {
        return;
    }
    // The relay's reader knows no numbers beyond all measure, and connecting writes none.
    if (record->originalStatusLine && nlohmann::json::accept(input)) {
        const JSONValue* own = record->originalStatusLine->member("command");
        const std::string* text = own == nullptr ? nullptr : own->string();
        const bool isOwn = text != nullptr && text->find("vorn-bridge") == std::string::npos;
        require(command == (isOwn ? std::optional(*text) : std::nullopt), "both readers find the same command");
    }
    integration.writeRecord(*record);
    require(integration.readRecord() == record, "a record is the same after a way through its file");
    require(downstreamCommand(integration.locations().record) == command, "so is the command for the relay");
}

}  // namespace vorn::fuzz
