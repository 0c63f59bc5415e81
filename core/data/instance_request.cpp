#include "core/data/instance_request.hpp"

#include <algorithm>
#include <array>

#include "core/support/json.hpp"

namespace vorn {
namespace {

using Kind = InstanceRequest::Kind;
using Scope = PlannedReset::Scope;

constexpr std::array kAllKinds{Kind::activate, Kind::showPopover, Kind::showDashboard, Kind::redeemed};

/// The text of that member; empty when it is missing or no text.
std::string textOf(const nlohmann::json& object, const char* key) {
    const nlohmann::json* const member = object.is_object() ? findMember(object, key) : nullptr;
    return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

/// The one of `all` that is spelt so.
template <typename All>
typename All::value_type spelt(const std::string& text, const All& all) {
    const auto* const found = std::ranges::find_if(all, [&](auto each) { return text == rawValue(each); });
    if (found == all.end()) {
        throw DecodingError("The running Vorn does not know this request. Quit it and start the new one.");
    }
    return *found;
}

}  // namespace

const char* rawValue(Kind kind) {
    switch (kind) {
        case Kind::activate:
            return "activate";
        case Kind::showPopover:
            return "show-popover";
        case Kind::showDashboard:
            return "show-dashboard";
        case Kind::redeemed:
            break;
    }
    return "redeemed";
}

std::string encode(const InstanceRequest& request) {
    nlohmann::json object{{"request", rawValue(request.kind)}};
    if (request.kind == Kind::redeemed) {
        object["scope"] = rawValue(request.scope);
    }
    return dumpJson(object);
}

InstanceRequest decodeInstanceRequest(std::string_view line) {
    const nlohmann::json object = parseJson(line).value_or(nlohmann::json());
    const std::string name = textOf(object, "request");
    if (name.empty()) {
        throw DecodingError("That is no request.");
    }
    InstanceRequest request{.kind = spelt(name, kAllKinds)};
    if (request.kind == Kind::redeemed) {
        request.scope = spelt(textOf(object, "scope"), PlannedReset::allScopes);
    }
    return request;
}

}  // namespace vorn
