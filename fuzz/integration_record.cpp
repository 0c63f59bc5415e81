#include "core/status_line/integration_record.hpp"

#include "core/status_line/status_line_integration.hpp"
#include "fuzz/fuzz_target.hpp"

/// The record of the user's own status line, which the relay runs and disconnecting puts back.
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
    if (record->originalStatusLine) {
        const JSONValue* own = record->originalStatusLine->member("command");
        const std::string* text = own == nullptr ? nullptr : own->string();
        const bool isOwn = text != nullptr && text->find("vorn-bridge") == std::string::npos;
        require(command == (isOwn ? std::optional(*text) : std::nullopt), "the relay runs the command of the record");
    }
    integration.writeRecord(*record);
    require(integration.readRecord() == record, "a record is the same after a way through its file");
    require(downstreamCommand(integration.locations().record) == command, "so is the command for the relay");
}

}  // namespace vorn::fuzz
