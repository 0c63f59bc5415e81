#include "core/data/probe_record.hpp"

#include <algorithm>

#include "core/data/limit_names.hpp"
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

/// Earlier versions kept only the text that people read; it is still written for them.
std::optional<ProbeFailure> decodeFailure(const nlohmann::json& value) {
    if (const auto* failure = findMember(value, "failure")) {
        const std::string kind = decodeText(requireMember(*failure, "kind"));
        const auto* detail = findMember(*failure, "detail");
        if (const auto known = probeFailureKind(kind)) {
            const auto* cause = findMember(*failure, "cause");
            const auto* subject = findMember(*failure, "subject");
            return ProbeFailure{.kind = *known,
                                .detail = detail != nullptr ? decodeText(*detail) : "",
                                .cause = probeFailureCause(cause != nullptr ? decodeText(*cause) : ""),
                                .subject = subject != nullptr ? decodeText(*subject) : ""};
        }
    }
    const auto* text = findMember(value, "lastError");
    return text != nullptr ? std::optional(failureDescribedAs(decodeText(*text))) : std::nullopt;
}

ProbeRecord::Missing decodeMissing(const nlohmann::json& value) {
    return {.since = decodeDate(requireMember(value, "since"), DateCoding::secondsSince1970),
            .until = decodeDate(requireMember(value, "until"), DateCoding::secondsSince1970)};
}

/// Earlier versions kept the name that the client printed.
UsageWindow decodeReading(const nlohmann::json& value) {
    UsageWindow reading = decodeUsageWindow(value, DateCoding::secondsSince1970);
    reading.kind = canonical(std::move(reading.kind));
    return reading;
}

ProbeRecord decode(const nlohmann::json& value) {
    ProbeRecord record;
    if (const auto* at = findMember(value, "probedAt")) {
        record.lastProbeAt = decodeDate(*at, DateCoding::secondsSince1970);
    } else if (const auto* whole = findMember(value, "lastProbeAt")) {
        record.lastProbeAt = decodeDate(*whole, DateCoding::iso8601);
    }
    const auto failures = decodeInteger(requireMember(value, "consecutiveFailures"));
    record.consecutiveFailures = static_cast<int>(std::clamp<std::int64_t>(failures, 0, 1000));
    record.failure = decodeFailure(value);
    for (const auto& reading : arrayOf(value, "readings")) {
        record.readings.push_back(decodeReading(reading));
    }
    for (const auto& kind : arrayOf(value, "expectedResets")) {
        record.expectedResets.insert(canonical(decodeWindowKind(kind)));
    }
    for (const auto& drop : arrayOf(value, "pendingDrops")) {
        record.pendingDrops.push_back(decodeReading(drop));
    }
    if (const auto* at = findMember(value, "figuresOf")) {
        record.figuresOf = decodeDate(*at, DateCoding::secondsSince1970);
    }
    for (const auto& entry : arrayOf(value, "missing")) {
        record.missing.insert_or_assign(decodeWindowKind(requireMember(entry, "kind")), decodeMissing(entry));
    }
    if (const auto* others = findMember(value, "others")) {
        record.others = decodeOtherLimits(*others);
    }
    if (const auto* account = findMember(value, "account")) {
        record.account = decodeText(*account);
    }
    return record;
}

nlohmann::json encode(const ProbeRecord& record) {
    nlohmann::json value = {{"consecutiveFailures", record.consecutiveFailures}};
    if (record.lastProbeAt) {
        value["lastProbeAt"] = encodeDate(*record.lastProbeAt, DateCoding::iso8601);
        // Whole seconds hide from a program that asked in the same second that another one has answers as well.
        value["probedAt"] = encodeDate(*record.lastProbeAt, DateCoding::secondsSince1970);
    }
    if (record.failure) {
        value["failure"] = {{"kind", rawValue(record.failure->kind)},
                            {"detail", record.failure->detail},
                            {"cause", rawValue(record.failure->cause)},
                            {"subject", record.failure->subject}};
        value["lastError"] = description(*record.failure);
    }
    for (const UsageWindow& reading : record.readings) {
        value["readings"].push_back(encode(reading, DateCoding::secondsSince1970));
    }
    for (const WindowKind& kind : record.expectedResets) {
        value["expectedResets"].push_back(encode(kind));
    }
    for (const UsageWindow& drop : record.pendingDrops) {
        value["pendingDrops"].push_back(encode(drop, DateCoding::secondsSince1970));
    }
    if (record.figuresOf) {
        value["figuresOf"] = encodeDate(*record.figuresOf, DateCoding::secondsSince1970);
    }
    for (const auto& [kind, missing] : record.missing) {
        value["missing"].push_back({{"kind", encode(kind)},
                                    {"since", encodeDate(missing.since, DateCoding::secondsSince1970)},
                                    {"until", encodeDate(missing.until, DateCoding::secondsSince1970)}});
    }
    if (!record.others.isEmpty()) {
        value["others"] = encode(record.others);
    }
    if (!record.account.empty()) {
        value["account"] = record.account;
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

ProbeRecord ProbeRecord::afterAnswer(const ClientAnswer& answer, Instant now) const {
    ProbeRecord next = *this;
    next.lastProbeAt = now;
    next.consecutiveFailures = answer.isStale() ? next.consecutiveFailures + 1 : 0;
    next.figuresOf = answer.isStale() ? std::optional(answer.fetchedAt) : std::nullopt;
    next.failure.reset();
    next.readings = answer.windows;
    return next;
}

ProbeRecord ProbeRecord::afterFailure(Instant now, ProbeFailure why) const {
    ProbeRecord next = *this;
    next.lastProbeAt = now;
    ++next.consecutiveFailures;
    next.figuresOf.reset();
    next.failure = std::move(why);
    return next;
}

Seconds probeInterval(int consecutiveFailures, Seconds refresh) {
    return refresh * (1 << std::clamp(consecutiveFailures, 0, kMostDoublings));
}

bool isProbeDue(const ProbeRecord& record, Seconds refresh, Instant now) {
    return !record.lastProbeAt || *record.lastProbeAt > now + kClockSlack ||
           now - *record.lastProbeAt >= probeInterval(record.consecutiveFailures, refresh);
}

bool mayRetryProbe(const ProbeRecord& record, Seconds refresh, Instant now) {
    return record.consecutiveFailures == 0 || isProbeDue(record, refresh, now);
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
