#include "core/data/probe_record.hpp"

#include <algorithm>

#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr int kMostDoublings = 4;
constexpr std::size_t kLargestFile = 4U << 20U;  // bytes; usually some hundreds

/// The elements of a list that may be missing.
nlohmann::json arrayOf(const nlohmann::json& value, const char* key) {
    const auto* list = findMember(value, key);
    return list != nullptr && list->is_array() ? *list : nlohmann::json::array();
}

ProbeRecord decode(const nlohmann::json& value) {
    ProbeRecord record;
    if (const auto* at = findMember(value, "lastProbeAt")) {
        record.lastProbeAt = decodeDate(*at, DateCoding::iso8601);
    }
    const auto failures = decodeInteger(requireMember(value, "consecutiveFailures"));
    record.consecutiveFailures = static_cast<int>(std::clamp<std::int64_t>(failures, 0, 1000));
    if (const auto* error = findMember(value, "lastError")) {
        record.lastError = decodeText(*error);
    }
    for (const auto& reading : arrayOf(value, "readings")) {
        record.readings.push_back(decodeUsageWindow(reading, DateCoding::secondsSince1970));
    }
    for (const auto& kind : arrayOf(value, "expectedResets")) {
        record.expectedResets.insert(decodeWindowKind(kind));
    }
    return record;
}

nlohmann::json encode(const ProbeRecord& record) {
    nlohmann::json value = {{"consecutiveFailures", record.consecutiveFailures}};
    if (record.lastProbeAt) {
        value["lastProbeAt"] = encodeDate(*record.lastProbeAt, DateCoding::iso8601);
    }
    if (!record.lastError.empty()) {
        value["lastError"] = record.lastError;
    }
    for (const UsageWindow& reading : record.readings) {
        value["readings"].push_back(encode(reading, DateCoding::secondsSince1970));
    }
    for (const WindowKind& kind : record.expectedResets) {
        value["expectedResets"].push_back(encode(kind));
    }
    return value;
}

/// A missing or damaged one is an empty one.
ProbeRecord decodeLeniently(const std::optional<std::string>& content) {
    const auto document = content ? parseJson(*content) : std::nullopt;
    if (!document) {
        return {};
    }
    try {
        return decode(*document);
    } catch (const DecodingError&) {
        return {};
    }
}

}  // namespace

ProbeRecord ProbeRecord::afterFailure(Instant now, std::string error) const {
    ProbeRecord next = *this;
    next.lastProbeAt = now;
    ++next.consecutiveFailures;
    next.lastError = std::move(error);
    return next;
}

Seconds probeInterval(int consecutiveFailures, Seconds refresh) {
    return refresh * (1 << std::clamp(consecutiveFailures, 0, kMostDoublings));
}

bool mayRetryProbe(const ProbeRecord& record, Seconds refresh, Instant now) {
    if (!record.lastProbeAt || record.consecutiveFailures == 0 || now < *record.lastProbeAt) {
        return true;
    }
    return now - *record.lastProbeAt >= probeInterval(record.consecutiveFailures, refresh);
}

ProbeRecord ProbeRecordStore::load() const {
    return decodeLeniently(readFile(m_file, kLargestFile));
}

void ProbeRecordStore::write(const ProbeRecord& record) const {
    createPrivateDirectories(m_file.parent_path());
    replaceFile(m_file, dumpJson(encode(record), true) + "\n");
}

bool ProbeRecordStore::save(const ProbeRecord& record) const try {
    write(record);
    return true;
} catch (const fs::filesystem_error&) {
    return false;
}

ProbeRecord ProbeRecordStore::edit(const std::function<void(ProbeRecord&)>& change,
                                   std::chrono::milliseconds patience) const {
    const FileLock lock = FileLock::beside(m_file, patience);
    const ProbeRecord before = decodeLeniently(readToReplace(m_file, kLargestFile));
    ProbeRecord after = before;
    change(after);
    if (after != before) {
        removeAbandonedTemporaries(m_file);
        write(after);
    }
    return after;
}

}  // namespace vorn
