#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/support/json_value.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// The relay's file name, by which a command that runs one is known.
inline constexpr const char* kBridgeName = "vorn-bridge";

/// What it takes to put the user's own status line back.
struct IntegrationRecord {
    std::optional<JSONValue> originalStatusLine;  ///< As it was, of whatever type; absent when there was none.
    Instant installedAt{};                        ///< Kept to whole seconds.
    bool operator==(const IntegrationRecord&) const = default;
};

/// The record in the text of its file; empty where that is damaged in any way. The relay and everybody else read it by
/// this function, so that they never disagree.
std::optional<IntegrationRecord> integrationRecordIn(std::string_view text);

/// The user's own status-line command as the integration record keeps it: what runs after Vorn's relay. Empty when
/// there is none, when the record is missing or damaged in any way, and when the command names a relay itself, which
/// would call itself for ever.
std::optional<std::string> downstreamCommand(const std::filesystem::path& recordFile);
/// The same for a record's text.
std::optional<std::string> downstreamCommandIn(std::string_view record);

}  // namespace vorn
