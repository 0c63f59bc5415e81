#include "core/data/usage_insights.hpp"

#include "core/support/json.hpp"

namespace vorn {
namespace {

using Finding = UsageInsights::Finding;
using Period = UsageInsights::Period;
using Share = UsageInsights::Share;

nlohmann::json encodeItem(const Finding& finding) {
    return {{"percent", finding.percent}, {"text", finding.text}};
}

nlohmann::json encodeItem(const Share& share) {
    return {{"name", share.name}, {"percent", share.percent}};
}

template <typename Item>
nlohmann::json encodeList(const std::vector<Item>& items) {
    auto list = nlohmann::json::array();
    for (const Item& item : items) {
        list.push_back(encodeItem(item));
    }
    return list;
}

nlohmann::json encodeItem(const Period& period) {
    nlohmann::json value = {
        {"label", period.label},
        {"findings", encodeList(period.findings)},
        {"topSkills", encodeList(period.topSkills)},
        {"topSubagents", encodeList(period.topSubagents)},
    };
    if (period.requests) {
        value["requests"] = *period.requests;
    }
    if (period.sessions) {
        value["sessions"] = *period.sessions;
    }
    return value;
}

Finding decodeFinding(const nlohmann::json& value) {
    return {.percent = decodeNumber(requireMember(value, "percent")), .text = decodeText(requireMember(value, "text"))};
}

Share decodeShare(const nlohmann::json& value) {
    return {.name = decodeText(requireMember(value, "name")), .percent = decodeNumber(requireMember(value, "percent"))};
}

template <typename Decode>
auto decodeList(const nlohmann::json& value, Decode decode) {
    if (!value.is_array()) {
        throw DecodingError("Expected an array.");
    }
    std::vector<decltype(decode(value))> items;
    for (const auto& item : value) {
        items.push_back(decode(item));
    }
    return items;
}

std::optional<std::int64_t> decodeCount(const nlohmann::json& value, const char* key) {
    const auto* member = findMember(value, key);
    return member == nullptr ? std::nullopt : std::optional(decodeInteger(*member));
}

Period decodePeriod(const nlohmann::json& value) {
    return {
        .label = decodeText(requireMember(value, "label")),
        .requests = decodeCount(value, "requests"),
        .sessions = decodeCount(value, "sessions"),
        .findings = decodeList(requireMember(value, "findings"), decodeFinding),
        .topSkills = decodeList(requireMember(value, "topSkills"), decodeShare),
        .topSubagents = decodeList(requireMember(value, "topSubagents"), decodeShare),
    };
}

}  // namespace

nlohmann::json encode(const UsageInsights& insights, DateCoding dates) {
    auto periods = nlohmann::json::array();
    for (const Period& period : insights.periods) {
        periods.push_back(encodeItem(period));
    }
    return {{"periods", std::move(periods)}, {"observedAt", encodeDate(insights.observedAt, dates)}};
}

UsageInsights decodeUsageInsights(const nlohmann::json& value, DateCoding dates) {
    return {
        .periods = decodeList(requireMember(value, "periods"), decodePeriod),
        .observedAt = decodeDate(requireMember(value, "observedAt"), dates),
    };
}

}  // namespace vorn
