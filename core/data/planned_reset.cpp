#include "core/data/planned_reset.hpp"

#include "core/support/json.hpp"
#include "core/support/uuid.hpp"

namespace vorn {
namespace {

using Scope = PlannedReset::Scope;

Scope decodeScope(const nlohmann::json& value) {
    const std::string raw = decodeText(value);
    for (const Scope scope : PlannedReset::allScopes) {
        if (raw == rawValue(scope)) {
            return scope;
        }
    }
    throw DecodingError("Cannot initialize Scope from invalid String value " + raw);
}

std::string decodeUuid(const nlohmann::json& value) {
    auto id = canonicalUuid(decodeText(value));
    if (!id) {
        throw DecodingError("Attempted to decode UUID from invalid UUID string.");
    }
    return *std::move(id);
}

}  // namespace

bool PlannedReset::covers(const WindowKind& kind) const {
    switch (scope) {
        case Scope::all:
            return true;
        case Scope::session:
            return kind.isSession();
        case Scope::week:
            break;
    }
    return !kind.isSession();
}

const char* rawValue(Scope scope) {
    switch (scope) {
        case Scope::all:
            return "all";
        case Scope::session:
            return "session";
        case Scope::week:
            break;
    }
    return "week";
}

const char* label(Scope scope) {
    switch (scope) {
        case Scope::all:
            return "All limits";
        case Scope::session:
            return "Session (5h)";
        case Scope::week:
            break;
    }
    return "Weekly limits";
}

nlohmann::json encode(const PlannedReset& reset, DateCoding dates) {
    return {
        {"id", reset.id},
        {"date", encodeDate(reset.date, dates)},
        {"scope", rawValue(reset.scope)},
        {"note", reset.note},
    };
}

PlannedReset decodePlannedReset(const nlohmann::json& value, DateCoding dates) {
    return {
        .id = decodeUuid(requireMember(value, "id")),
        .date = decodeDate(requireMember(value, "date"), dates),
        .scope = decodeScope(requireMember(value, "scope")),
        .note = decodeText(requireMember(value, "note")),
    };
}

}  // namespace vorn
