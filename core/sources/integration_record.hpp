#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vorn {

/// The relay's file name, by which a command that runs one is known.
inline constexpr const char* kBridgeName = "vorn-bridge";

/// The user's own status-line command as the integration record keeps it: what runs after Vorn's relay. Empty when
/// there is none, when the record is missing or damaged in any way, and when the command names a relay itself, which
/// would call itself for ever.
std::optional<std::string> downstreamCommand(const std::filesystem::path& recordFile);
/// The same for a record's text.
std::optional<std::string> downstreamCommandIn(std::string_view record);

}  // namespace vorn
