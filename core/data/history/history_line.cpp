#include "core/data/history/history_line.hpp"

#include <cmath>
#include <iterator>
#include <utility>

#include <fmt/format.h>
#include <simdjson.h>

#include "core/support/json.hpp"

namespace vorn {
namespace {

namespace ondemand = simdjson::ondemand;

std::optional<double> finiteNumber(ondemand::value value) {
    double number = 0;
    if (value.get_double().get(number) != simdjson::SUCCESS || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

/// The members of a line as far as they have been seen.
struct Draft {
    std::optional<std::string_view> key;
    std::optional<double> used;
    std::optional<double> reset;
    std::optional<double> observed;
    DataSource source = DataSource::usageCommand;
};

bool take(Draft& draft, ondemand::field field) {
    std::string_view name;
    if (field.unescaped_key().get(name) != simdjson::SUCCESS) {
        return false;
    }
    ondemand::value value = field.value();
    if (name == "u") {
        return (draft.used = finiteNumber(value)).has_value();
    }
    if (name == "t") {
        return (draft.observed = finiteNumber(value)).has_value();
    }
    if (name == "r") {
        bool isNull = false;
        if (value.is_null().get(isNull) != simdjson::SUCCESS) {
            return false;
        }
        return isNull || (draft.reset = finiteNumber(value)).has_value();
    }
    if (name == "k") {
        std::string_view key;
        if (value.get_string().get(key) != simdjson::SUCCESS) {
            return false;
        }
        draft.key = key;
    }
    if (name == "o") {
        std::string_view origin;
        const bool isText = value.get_string().get(origin) == simdjson::SUCCESS;
        draft.source =
            isText && origin == rawValue(DataSource::statusLine) ? DataSource::statusLine : DataSource::usageCommand;
    }
    return true;
}

}  // namespace

static_assert(HistoryLineDecoder::padding >= simdjson::SIMDJSON_PADDING);

void appendHistoryLine(std::string& lines, const HistorySample& sample, DataSource source) {
    // {} gives the shortest digits that read back as the same number, whatever the locale.
    const auto out = std::back_inserter(lines);
    fmt::format_to(out, R"({{"k":{},"u":{})", dumpJson(sample.kindKey), sample.usedPercent);
    if (sample.resetsAt) {
        fmt::format_to(out, R"(,"r":{})", secondsSince1970(*sample.resetsAt));
    }
    fmt::format_to(out, R"(,"t":{})", secondsSince1970(sample.observedAt));
    if (source != DataSource::usageCommand) {
        fmt::format_to(out, R"(,"o":"{}")", rawValue(source));
    }
    lines += "}\n";
}

struct HistoryLineDecoder::Parser {
    ondemand::parser parser;
};

HistoryLineDecoder::HistoryLineDecoder() : m_parser(std::make_unique<Parser>()) {}
HistoryLineDecoder::~HistoryLineDecoder() = default;

std::optional<RecordedSample> HistoryLineDecoder::decode(std::string_view line) {
    ondemand::document document;
    ondemand::object object;
    if (m_parser->parser.iterate(line.data(), line.size(), line.size() + padding).get(document) != simdjson::SUCCESS ||
        document.get_object().get(object) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    Draft draft;
    for (auto member : object) {
        ondemand::field field;
        if (std::move(member).get(field) != simdjson::SUCCESS || !take(draft, field)) {
            return std::nullopt;
        }
    }
    const bool hasMore = document.current_location().error() == simdjson::SUCCESS;
    if (hasMore || !draft.key || !draft.used || !draft.observed) {
        return std::nullopt;
    }
    HistorySample sample{std::string(*draft.key), *draft.used, std::nullopt, instantSince1970(*draft.observed)};
    if (draft.reset) {
        sample.resetsAt = instantSince1970(*draft.reset);
    }
    return RecordedSample{.sample = std::move(sample), .source = draft.source};
}

}  // namespace vorn
