#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorn {

/// What is read of the JSON object that Claude Code prints around a command's text.
struct UsageEnvelope {
    std::string result;    ///< Empty when there is none or it is no text.
    bool isError = false;  ///< Only by JSON true.
};

/// Empty when `output` is not one JSON object. Of several members of the same name the last counts. Takes no more
/// memory than the result is long, however large or deep the rest may be.
std::optional<UsageEnvelope> readUsageEnvelope(std::string_view output);

}  // namespace vorn
