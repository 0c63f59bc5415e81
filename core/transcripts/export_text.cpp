#include "core/transcripts/export_text.hpp"

#include <initializer_list>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "core/support/text.hpp"

namespace vorn {
namespace {

/// A field of a record as both forms need it.
struct Field {
    std::string_view name;
    std::optional<std::string> value;
    bool isNumber = false;
};

std::string quotedForCsv(const std::string& text) {
    // Spreadsheets take a text that begins so for a formula, and a directory may have any name.
    const bool isFormula = !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
    if (!isFormula && text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = isFormula ? "\"'" : "\"";
    for (const char c : text) {
        quoted += c;
        if (c == '"') {
            quoted += c;
        }
    }
    return quoted + '"';
}

void appendCsv(std::string& table, std::span<const Field> record) {
    std::string_view separator;
    for (const Field& field : record) {
        table += separator;
        const std::string value = field.value.value_or("");
        table += field.isNumber ? value : quotedForCsv(value);
        separator = ",";
    }
    table += "\r\n";
}

void appendNames(std::string& table, std::span<const std::string_view> names) {
    table += fmt::format("{}\r\n", fmt::join(names, ","));
}

void appendJson(std::string& table, std::span<const Field> record) {
    table += table.empty() ? "[\n{" : ",\n{";
    std::string_view separator;
    for (const Field& field : record) {
        if (field.value) {
            fmt::format_to(std::back_inserter(table), "{}\"{}\":{}", separator, field.name,
                           field.isNumber ? *field.value : nlohmann::json(*field.value).dump());
            separator = ",";
        }
    }
    table += '}';
}

void append(std::string& table, std::span<const Field> record, ExportFormat format) {
    format == ExportFormat::csv ? appendCsv(table, record) : appendJson(table, record);
}

std::string finished(std::string table, ExportFormat format) {
    if (format == ExportFormat::json) {
        table += table.empty() ? "[]\n" : "\n]\n";
    }
    return table;
}

}  // namespace

std::string exportHistory(std::span<const HistorySample> samples, ExportFormat format) {
    std::string table;
    if (format == ExportFormat::csv) {
        constexpr std::string_view kNames[] = {"observedAt", "window", "usedPercent", "resetsAt"};
        appendNames(table, kNames);
    }
    for (const HistorySample& sample : samples) {
        if (!sample.isFinite()) {
            continue;
        }
        const Field record[] = {
            {.name = "observedAt", .value = formatIso8601Milliseconds(sample.observedAt)},
            {.name = "window", .value = repairUtf8(sample.kindKey)},
            {.name = "usedPercent", .value = fmt::format("{}", sample.usedPercent), .isNumber = true},
            {.name = "resetsAt",
             .value = sample.resetsAt ? std::optional(formatIso8601Milliseconds(*sample.resetsAt)) : std::nullopt}};
        append(table, record, format);
    }
    return finished(std::move(table), format);
}

std::string exportActivity(std::span<const ActivityEvent> events, ExportFormat format) {
    std::string table;
    if (format == ExportFormat::csv) {
        constexpr std::string_view kNames[] = {"timestamp",
                                               "project",
                                               "model",
                                               "inputTokens",
                                               "outputTokens",
                                               "cacheReadTokens",
                                               "cacheWrite5mTokens",
                                               "cacheWrite1hTokens",
                                               "weight"};
        appendNames(table, kNames);
    }
    const auto number = [](std::string_view name, auto value) {
        return Field{.name = name, .value = fmt::format("{}", value), .isNumber = true};
    };
    for (const ActivityEvent& event : events) {
        const TokenCounts& tokens = event.tokens;
        const Field record[] = {{.name = "timestamp", .value = formatIso8601Milliseconds(event.timestamp)},
                                {.name = "project", .value = repairUtf8(event.project())},
                                {.name = "model", .value = repairUtf8(std::string_view(event.model))},
                                number("inputTokens", tokens.input),
                                number("outputTokens", tokens.output),
                                number("cacheReadTokens", tokens.cacheRead),
                                number("cacheWrite5mTokens", tokens.cacheWrite5m),
                                number("cacheWrite1hTokens", tokens.cacheWrite1h),
                                number("weight", event.weight())};
        append(table, record, format);
    }
    return finished(std::move(table), format);
}

}  // namespace vorn
