#include "core/transcripts/transcript_line.hpp"

#include <cmath>
#include <functional>

#include "core/data/limit_names.hpp"

namespace vorn {
namespace {

namespace ondemand = simdjson::ondemand;

// A line that cannot be read is ordinary: nothing is thrown, and every step says whether it went well.

using Text = std::optional<std::string_view>;
using Count = std::optional<std::int64_t>;

struct Usage {
    Count input;
    Count output;
    Count cacheRead;
    Count cacheCreation;
    Count ephemeral5m;
    Count ephemeral1h;
};

struct Message {
    Text id;
    Text model;
    std::optional<Usage> usage;
};

/// Which limit stood in the way. Nothing in it spoils a line.
struct Quota {
    Text status;
    Text limit;
    std::optional<double> resetsAt;  ///< Seconds since 1970.
};

struct Line {
    Text type;
    Text timestamp;
    Text cwd;
    Text requestId;
    Message message;
    Quota quota;
    bool isError = false;
};

bool isNull(ondemand::value& value) {
    bool null = false;
    return value.is_null().get(null) == simdjson::SUCCESS && null;
}

bool read(ondemand::value& value, Text& out) {
    out.reset();
    std::string_view text;
    if (value.get_string().get(text) == simdjson::SUCCESS) {
        out = text;
        return true;
    }
    return isNull(value);
}

bool read(ondemand::value& value, Count& out) {
    out.reset();
    std::int64_t whole = 0;
    double number = 0;
    if (value.get_int64().get(whole) != simdjson::SUCCESS) {
        if (value.get_double().get(number) != simdjson::SUCCESS) {
            return isNull(value);
        }
        if (!(std::abs(number) <= static_cast<double>(kMaximumTokens)) || number != std::trunc(number)) {
            return false;
        }
        whole = static_cast<std::int64_t>(number);
    }
    out = whole;
    return whole >= 0 && whole <= kMaximumTokens;
}

/// Hands every member of an object to `take(key, value)`, which returns false to give up. False when the line cannot be
/// read.
template <typename Take>
bool readMembers(ondemand::object& object, Take take) {
    for (auto member : object) {
        ondemand::field field;
        std::string_view key;
        if (std::move(member).get(field) != simdjson::SUCCESS || field.unescaped_key().get(key) != simdjson::SUCCESS ||
            !take(key, field.value())) {
            return false;
        }
    }
    return true;
}

/// The same for what may be JSON null, which is no object but no fault either; `isObject` tells.
template <typename Take>
bool readMembers(ondemand::value& value, bool& isObject, Take take) {
    ondemand::object object;
    isObject = value.get_object().get(object) == simdjson::SUCCESS;
    return isObject ? readMembers(object, take) : isNull(value);
}

bool read(ondemand::value& value, Usage& usage) {
    bool isObject = false;
    return readMembers(value, isObject, [&](std::string_view key, ondemand::value& member) {
        if (key == "ephemeral_5m_input_tokens") {
            return read(member, usage.ephemeral5m);
        }
        return key != "ephemeral_1h_input_tokens" || read(member, usage.ephemeral1h);
    });
}

bool read(ondemand::value& value, std::optional<Usage>& out) {
    Usage usage;
    bool isObject = false;
    const bool ok = readMembers(value, isObject, [&](std::string_view key, ondemand::value& member) {
        if (key == "input_tokens") {
            return read(member, usage.input);
        }
        if (key == "output_tokens") {
            return read(member, usage.output);
        }
        if (key == "cache_read_input_tokens") {
            return read(member, usage.cacheRead);
        }
        if (key == "cache_creation_input_tokens") {
            return read(member, usage.cacheCreation);
        }
        if (key == "cache_creation") {
            usage.ephemeral5m.reset();
            usage.ephemeral1h.reset();
            return read(member, usage);
        }
        return true;
    });
    out = isObject ? std::optional(usage) : std::nullopt;
    return ok;
}

bool read(ondemand::value& value, Message& message) {
    message = {};
    bool isObject = false;
    return readMembers(value, isObject, [&](std::string_view key, ondemand::value& member) {
        if (key == "id") {
            return read(member, message.id);
        }
        if (key == "model") {
            return read(member, message.model);
        }
        return key != "usage" || read(member, message.usage);
    });
}

bool read(ondemand::value& value, Quota& quota) {
    quota = {};
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
        return true;
    }
    return readMembers(object, [&](std::string_view key, ondemand::value& member) {
        double seconds = 0;
        if (key == "resetsAt" && member.get_double().get(seconds) == simdjson::SUCCESS) {
            quota.resetsAt = seconds;
        } else if (key == "status") {
            read(member, quota.status);
        } else if (key == "rateLimitType") {
            read(member, quota.limit);
        }
        return true;
    });
}

bool readMember(std::string_view key, ondemand::value& value, Line& line) {
    if (key == "quotaLimits") {
        return read(value, line.quota);
    }
    if (key == "isApiErrorMessage") {
        bool isError = false;
        line.isError = value.get_bool().get(isError) == simdjson::SUCCESS && isError;
        return true;
    }
    if (key == "type") {
        return read(value, line.type);
    }
    if (key == "timestamp") {
        return read(value, line.timestamp);
    }
    if (key == "cwd") {
        return read(value, line.cwd);
    }
    if (key == "requestId") {
        return read(value, line.requestId);
    }
    return key != "message" || read(value, line.message);
}

bool read(ondemand::document& document, Line& line) {
    ondemand::object object;
    const auto take = [&](std::string_view key, ondemand::value& value) {
        return readMember(key, value, line);
    };
    return document.get_object().get(object) == simdjson::SUCCESS && readMembers(object, take) &&
           document.current_location().error() == simdjson::OUT_OF_BOUNDS;  // nothing after the object
}

TokenCounts tokensOf(const Usage& usage) {
    const bool isSplit = usage.ephemeral5m || usage.ephemeral1h;
    return {.input = usage.input.value_or(0),
            .output = usage.output.value_or(0),
            .cacheRead = usage.cacheRead.value_or(0),
            .cacheWrite5m = isSplit ? usage.ephemeral5m.value_or(0) : usage.cacheCreation.value_or(0),
            .cacheWrite1h = usage.ephemeral1h.value_or(0)};
}

/// Empty when the line tells of no refusal, or of a limit that has no window.
std::optional<RefusedTurn> refusalOf(const Line& line) {
    const Quota& quota = line.quota;
    if (!line.isError || quota.status != "rejected" || !line.timestamp) {
        return std::nullopt;
    }
    const auto at = parseIso8601(*line.timestamp, Fraction::optional);
    const auto kind = windowKindOfMember(quota.limit.value_or(""));
    if (!at || !kind) {
        return std::nullopt;
    }
    const auto reset = quota.resetsAt ? std::optional(instantSince1970(*quota.resetsAt)) : std::nullopt;
    return RefusedTurn{.at = *at, .kind = *kind, .resetsAt = reset && isPlausible(*reset) ? reset : std::nullopt};
}

/// Of the ids joined by ":", or of the one that is there. `scratch` is memory to build the text in.
std::optional<ReplyKey> keyOf(const Text& messageId, const Text& requestId, std::string& scratch) {
    if (!messageId && !requestId) {
        return std::nullopt;
    }
    // Two hashes of 64 bits make one of 128; the byte in front makes them differ.
    scratch = '#';
    scratch += messageId.value_or("");
    if (messageId && requestId) {
        scratch += ':';
    }
    scratch += requestId.value_or("");
    const std::hash<std::string_view> hash;
    return ReplyKey{.low = hash(std::string_view(scratch).substr(1)), .high = hash(scratch)};
}

/// `scratch` as in `keyOf`.
std::optional<TranscriptReply> replyOf(const Line& line, std::string& scratch) {
    const Message& message = line.message;
    if (!line.timestamp || !message.usage || message.model == "<synthetic>") {
        return std::nullopt;
    }
    const auto timestamp = parseIso8601(*line.timestamp, Fraction::required);
    const TokenCounts tokens = tokensOf(*message.usage);
    if (!timestamp || tokens.total() == 0) {
        return std::nullopt;
    }
    return TranscriptReply{.timestamp = *timestamp,
                           .model = message.model.value_or("unknown"),
                           .cwd = line.cwd.value_or(""),
                           .tokens = tokens,
                           .key = keyOf(message.id, line.requestId, scratch)};
}

}  // namespace

TranscriptLine TranscriptLineParser::parse(std::string_view text) {
    ondemand::document document;
    Line line;
    const simdjson::padded_string_view padded(text, text.size() + kPadding);
    if (m_parser.iterate(padded).get(document) != simdjson::SUCCESS || !read(document, line) ||
        line.type != "assistant") {
        return {};
    }
    if (const auto reply = replyOf(line, m_key)) {
        return *reply;
    }
    const auto refusal = refusalOf(line);
    return refusal ? TranscriptLine(*refusal) : TranscriptLine();
}

}  // namespace vorn
