#include "core/data/usage_window.hpp"

#include <cmath>
#include <ostream>

#include "core/support/json.hpp"

namespace vorn {
namespace {

DataSource decodeDataSource(const nlohmann::json& value) {
    const std::string raw = decodeText(value);
    for (const DataSource source : {DataSource::usageCommand, DataSource::statusLine}) {
        if (raw == rawValue(source)) {
            return source;
        }
    }
    throw DecodingError("Cannot initialize DataSource from invalid String value " + raw);
}

}  // namespace

const char* rawValue(DataSource source) {
    return source == DataSource::statusLine ? "statusLine" : "usageCommand";
}

bool sameReset(std::optional<Instant> one, std::optional<Instant> other) {
    if (!one || !other) {
        return !one && !other;
    }
    return std::chrono::abs(*one - *other) < kSameInstanceTolerance;
}

bool UsageWindow::isSameInstance(const UsageWindow& other) const {
    return kind == other.kind && sameReset(resetsAt, other.resetsAt);
}

nlohmann::json encode(const UsageWindow& window, DateCoding dates) {
    nlohmann::json value = {
        {"kind", encode(window.kind)},
        {"usedPercent", window.usedPercent},
        {"observedAt", encodeDate(window.observedAt, dates)},
        {"source", rawValue(window.source)},
    };
    if (window.resetsAt) {
        value["resetsAt"] = encodeDate(*window.resetsAt, dates);
    }
    return value;
}

UsageWindow decodeUsageWindow(const nlohmann::json& value, DateCoding dates) {
    UsageWindow window{
        .kind = decodeWindowKind(requireMember(value, "kind")),
        .usedPercent = decodeNumber(requireMember(value, "usedPercent")),
        .resetsAt = std::nullopt,
        .observedAt = decodeDate(requireMember(value, "observedAt"), dates),
        .source = decodeDataSource(requireMember(value, "source")),
    };
    if (const auto* resetsAt = findMember(value, "resetsAt")) {
        window.resetsAt = decodeDate(*resetsAt, dates);
    }
    return window;
}

void PrintTo(const UsageWindow& window, std::ostream* out) {
    *out << window.kind.key() << ' ' << window.usedPercent << "% resets "
         << (window.resetsAt ? formatIso8601Milliseconds(*window.resetsAt) : "-") << " observed "
         << formatIso8601Milliseconds(window.observedAt) << ' ' << rawValue(window.source);
}

}  // namespace vorn

std::size_t std::hash<vorn::UsageWindow>::operator()(const vorn::UsageWindow& window) const noexcept {
    const std::size_t kind = std::hash<vorn::WindowKind>{}(window.kind);
    const std::size_t percent = std::hash<double>{}(window.usedPercent);
    return kind ^ (percent * 31) ^ (std::hash<double>{}(vorn::secondsSince1970(window.observedAt)) * 131);
}
