#include "core/status_line/integration_record.hpp"

#include <cstddef>
#include <system_error>

#include "core/support/file.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLargestRecord = std::size_t{1} << 20U;

/// What fails once may succeed the next time, and without the record there is no status line.
std::optional<std::string> readPersistently(const std::filesystem::path& file) {
    constexpr int kAttempts = 3;
    for (int i = 0; i < kAttempts; ++i) {
        std::error_code error;
        auto content = readFile(file, kLargestRecord, error);
        if (content || error == std::errc::no_such_file_or_directory) {
            return content;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<IntegrationRecord> integrationRecordIn(std::string_view text) {
    // In the path of every turn, where an exception would take longer than all the rest: none is thrown.
    const auto document = JSONValue::parsed(text);
    const JSONValue* date = document ? document->member("installedAt") : nullptr;
    const auto installedAt = date == nullptr || date->string() == nullptr
                                 ? std::nullopt
                                 : parseIso8601(*date->string(), Fraction::forbidden);
    if (!installedAt) {
        return std::nullopt;
    }
    const JSONValue* statusLine = document->member("originalStatusLine");
    return IntegrationRecord{.originalStatusLine = statusLine == nullptr ? std::nullopt : std::optional(*statusLine),
                             .installedAt = *installedAt};
}

std::optional<std::string> downstreamCommandIn(std::string_view record) {
    const auto content = record.size() <= kLargestRecord ? integrationRecordIn(record) : std::nullopt;
    if (!content || !content->originalStatusLine) {
        return std::nullopt;
    }
    const JSONValue* command = content->originalStatusLine->member("command");
    const std::string* text = command == nullptr ? nullptr : command->string();
    return text == nullptr || text->find(kBridgeName) != std::string::npos ? std::nullopt : std::optional(*text);
}

std::optional<std::string> downstreamCommand(const std::filesystem::path& recordFile) {
    const auto content = readPersistently(recordFile);
    return content ? downstreamCommandIn(*content) : std::nullopt;
}

}  // namespace vorn
