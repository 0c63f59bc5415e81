#include "core/data/rate_limits.hpp"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "core/data/limit_names.hpp"
#include "core/support/text.hpp"

namespace vorn {
namespace {

using nlohmann::json;
using Names = std::initializer_list<const char*>;

constexpr std::size_t kMostLimits = 100;
constexpr std::size_t kLongestName = 60;

/// Null for what has no such member.
const json& member(const json& value, const char* name) {
    static const json nothing;
    const auto found = value.is_object() ? value.find(name) : value.end();
    return found != value.end() ? *found : nothing;
}

/// Of the first of these members that is a number.
std::optional<double> numberIn(const json& value, Names names) {
    for (const char* name : names) {
        const json& number = member(value, name);
        if (number.is_number() && std::isfinite(number.get<double>())) {
            return number.get<double>();
        }
    }
    return std::nullopt;
}

std::string textIn(const json& value, const char* name) {
    const json& text = member(value, name);
    return text.is_string() ? std::string(firstCodePoints(text.get_ref<const std::string&>(), kLongestName)) : "";
}

std::optional<Instant> resetIn(const json& value) {
    const json& reset = member(value, "resets_at");
    if (reset.is_string()) {
        return parseIso8601(reset.get_ref<const std::string&>(), Fraction::optional);
    }
    const auto seconds = numberIn(value, {"resets_at"});
    const auto instant = seconds ? std::optional(instantSince1970(*seconds)) : std::nullopt;
    return instant && isPlausible(*instant) ? instant : std::nullopt;
}

class Collector {
public:
    Collector(Instant observedAt, DataSource source) : m_observedAt(observedAt), m_source(source) {}

    void takeMember(const std::string& name, const json& value) {
        const std::string title = titleOfMember(firstCodePoints(name, kLongestName));
        if (const auto kind = windowKindOfMember(firstCodePoints(name, kLongestName))) {
            const std::string model = modelIn(value);
            take(kind->which() == WindowKind::Case::weekModel && !model.empty() ? modelWeek(model) : *kind, value);
        } else {
            takeOther(title, value);
        }
    }

    void takeEntry(const json& value) {
        const std::string kind = textIn(value, "kind");
        const std::string model = modelIn(value);
        if (kind == "session") {
            take(WindowKind::session(), value);
        } else if (kind == "weekly_all") {
            take(WindowKind::week(), value);
        } else if (kind == "weekly_scoped" && !model.empty()) {
            take(modelWeek(model), value);
        } else if (!kind.empty()) {
            takeOther(titleOfMember(kind), value);
        }
    }

    void takeCredits(const json& value) {
        const auto spent = numberIn(value, {"used_credits"});
        if (!spent) {
            return;
        }
        const json& isEnabled = member(value, "is_enabled");
        m_limits.others.credits = Credits{.isEnabled = isEnabled.is_boolean() && isEnabled.get<bool>(),
                                          .spent = *spent,
                                          .cap = numberIn(value, {"monthly_limit"}),
                                          .usedPercent = shareIn(value),
                                          .currency = textIn(value, "currency"),
                                          .observedAt = m_observedAt};
    }

    RateLimits collected() && { return std::move(m_limits); }

private:
    static std::optional<double> shareIn(const json& value) {
        return numberIn(value, {"used_percentage", "utilization", "percent"});
    }
    static std::string modelIn(const json& value) {
        const std::string scoped = textIn(member(member(value, "scope"), "model"), "display_name");
        return scoped.empty() ? textIn(member(value, "model"), "display_name") : scoped;
    }

    [[nodiscard]] bool isFull() const { return m_limits.windows.size() + m_limits.others.limits.size() >= kMostLimits; }

    void take(WindowKind kind, const json& value) {
        const auto percent = shareIn(value);
        const bool isKnown = std::ranges::any_of(m_limits.windows, [&](const UsageWindow& window) {
            return asciiLower(window.kind.key()) == asciiLower(kind.key());
        });
        if (percent && !isKnown && !isFull()) {
            m_limits.windows.push_back({.kind = std::move(kind),
                                        .usedPercent = *percent,
                                        .resetsAt = resetIn(value),
                                        .observedAt = m_observedAt,
                                        .source = m_source});
        }
    }

    void takeOther(std::string title, const json& value) {
        const auto used = numberIn(value, {"used", "used_credits", "spent"});
        const auto cap = numberIn(value, {"cap", "limit", "monthly_limit"});
        auto percent = shareIn(value);
        if (!percent && used && cap && *cap > 0) {
            percent = 100 * *used / *cap;
        }
        const bool isKnown = std::ranges::any_of(m_limits.others.limits, [&](const OtherLimit& limit) {
            return asciiLower(limit.name) == asciiLower(title);
        });
        if (percent && !title.empty() && !isKnown && !isFull()) {
            m_limits.others.limits.push_back({.name = std::move(title),
                                              .usedPercent = *percent,
                                              .used = used,
                                              .cap = cap,
                                              .resetsAt = resetIn(value),
                                              .observedAt = m_observedAt});
        }
    }

    Instant m_observedAt;
    DataSource m_source;
    RateLimits m_limits;
};

}  // namespace

RateLimits decodeRateLimits(const json& rateLimits, Instant observedAt, DataSource source) {
    Collector collector(observedAt, source);
    if (!rateLimits.is_object()) {
        return {};
    }
    for (const auto& [name, value] : rateLimits.items()) {
        if (name == "extra_usage") {
            collector.takeCredits(value);
        } else if (value.is_object()) {
            collector.takeMember(name, value);
        }
    }
    const json& list = member(rateLimits, "limits");
    for (std::size_t i = 0; list.is_array() && i < list.size() && i < kMostLimits; ++i) {
        collector.takeEntry(list[i]);
    }
    return std::move(collector).collected();
}

}  // namespace vorn
