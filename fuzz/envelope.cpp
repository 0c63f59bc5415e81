#include <nlohmann/json.hpp>

#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_command_probe.hpp"
#include "core/usage_command/usage_envelope.hpp"
#include "core/wording/failure_text.hpp"
#include "fuzz/fuzz_target.hpp"

/// The JSON object around that text, compared with what a reader of whole documents makes of it.
namespace vorn::fuzz {
namespace {

std::optional<UsageEnvelope> readByTree(std::string_view input) {
    const auto document = nlohmann::json::parse(input, nullptr, /*allow_exceptions=*/false);
    if (!document.is_object()) {
        return std::nullopt;
    }
    const auto result = document.find("result");
    const auto isError = document.find("is_error");
    return UsageEnvelope{
        .result = result != document.end() && result->is_string() ? result->get<std::string>() : std::string(),
        .isError = isError != document.end() && *isError == true};
}

void interpret(std::string_view input) try {
    const auto result = UsageCommandProbe::interpret(input, kNow);
    require(result.isSubscription, "an answer without a subscription is an error");
} catch (const ProbeError& error) {
    requireUtf8(error.what());
    requireUtf8(Format::sentence(error.failure()));
    requireUtf8(Format::quoted(error.failure()));
}

}  // namespace

void checkInput(std::string_view input) {
    const auto envelope = readUsageEnvelope(input);
    const auto expected = readByTree(input);
    require(envelope.has_value() == expected.has_value(), "an envelope is one JSON object");
    if (envelope) {
        requireUtf8(envelope->result);
        require(envelope->result == expected->result, "the last text named result counts");
        require(envelope->isError == expected->isError, "the last is_error counts");
    }
    interpret(input);
}

}  // namespace vorn::fuzz
