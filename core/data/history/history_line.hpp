#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/data/history_sample.hpp"

/// One sample as one line of JSON: "k" the key of its kind, "u" the used percent, "r" the reset time where there is
/// one, "t" the time of observation, "o" the origin of the reading where that is not the usage command; times are
/// seconds since 1970, and every number reads back as exactly itself.
namespace vorn {

/// Appends a finite sample (JSON has no infinity) and its line feed.
void appendHistoryLine(std::string& lines, const HistorySample& sample, DataSource source = DataSource::usageCommand);

/// What a line holds.
struct RecordedSample {
    HistorySample sample;
    DataSource source = DataSource::usageCommand;
    bool operator==(const RecordedSample&) const = default;
};

/// Reads lines back. Reuses its memory from line to line; not for use by two threads at once.
class HistoryLineDecoder {
public:
    /// How many bytes behind a line have to be readable; their values do not matter.
    static constexpr std::size_t padding = 64;

    HistoryLineDecoder();
    ~HistoryLineDecoder();
    HistoryLineDecoder(const HistoryLineDecoder&) = delete;
    HistoryLineDecoder& operator=(const HistoryLineDecoder&) = delete;

    /// `line` without its line feed. Empty unless it is one JSON object with a text "k", finite numbers "u" and "t",
    /// and a finite number, null or nothing as "r"; other members are ignored. An "o" that names no source that is
    /// known here stands for the usage command.
    std::optional<RecordedSample> decode(std::string_view line);

private:
    struct Parser;
    std::unique_ptr<Parser> m_parser;
};

}  // namespace vorn
