#include "core/sources/integration_record.hpp"

#include <cstddef>

#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLargestRecord = std::size_t{1} << 20U;

/// What fails once may succeed the next time, and without the record there is no status line.
std::optional<std::string> readPersistently(const std::filesystem::path& file) {
    constexpr int kAttempts = 3;
    for (int i = 0; i < kAttempts; ++i) {
        try {
            return readToReplace(file, kLargestRecord);
        } catch (const std::filesystem::filesystem_error&) {
            // Again.
        }
    }
    return std::nullopt;
}

/// Throws DecodingError.
std::optional<std::string> commandOf(const nlohmann::json& record) {
    decodeDate(requireMember(record, "installedAt"), DateCoding::iso8601);
    const nlohmann::json* statusLine = findMember(record, "originalStatusLine");
    if (statusLine == nullptr) {
        return std::nullopt;
    }
    const std::string command = decodeText(requireMember(*statusLine, "command"));
    if (command.find(kBridgeName) != std::string::npos) {
        return std::nullopt;
    }
    return command;
}

}  // namespace

std::optional<std::string> downstreamCommandIn(std::string_view record) try {
    const auto document = record.size() <= kLargestRecord ? parseJson(record) : std::nullopt;
    return document ? commandOf(*document) : std::nullopt;
} catch (const DecodingError&) {
    return std::nullopt;
}

std::optional<std::string> downstreamCommand(const std::filesystem::path& recordFile) {
    const auto content = readPersistently(recordFile);
    return content ? downstreamCommandIn(*content) : std::nullopt;
}

}  // namespace vorn
