#include "core/usage_command/reported_limits_reader.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "core/data/limit_names.hpp"
#include "core/support/text.hpp"

namespace vorn {
namespace {

using namespace json_members;

/// The plans of today have seven at most.
constexpr std::size_t kMostLimits = 100;
constexpr std::string_view kCreditsMember = "extra_usage";

/// One limit in any form in which it is told of. Absent: null, or of another type than is known.
struct Told {
    std::optional<double> percent;
    std::optional<double> used;
    std::optional<double> cap;
    std::optional<Instant> resetsAt;
    std::string kind;   ///< Only in the list.
    std::string scope;  ///< What it is the limit of, as the client shows it: "Fable".
    std::string currency;
    bool isEnabled = false;
};

/// As reported, else as it follows from what was used.
std::optional<double> usedPercent(const Told& told) {
    if (told.percent || !told.used || !(told.cap > 0.0)) {
        return told.percent;
    }
    const double share = 100 * (*told.used / *told.cap);
    return std::isfinite(share) ? std::optional(share) : std::nullopt;
}

bool readScope(ondemand::value& value, std::string& scope) {
    std::string displayName;
    std::string id;
    std::string surface;
    const bool isJson = forEachMember(value, [&](std::string_view key, ondemand::value member) {
        if (key == "surface") {
            surface = textIn(member).value_or("");
        }
        return key != "model" || forEachMember(member, [&](std::string_view name, ondemand::value text) {
                   if (name == "display_name") {
                       displayName = textIn(text).value_or("");
                   } else if (name == "id") {
                       id = textIn(text).value_or("");
                   }
                   return true;
               });
    });
    scope = !displayName.empty() ? displayName : !id.empty() ? id : titleOfMember(surface);
    return isJson;
}

bool readTold(ondemand::value& value, Told& told) {
    return forEachMember(value, [&](std::string_view key, ondemand::value member) {
        if (key == "utilization" || (key == "percent" && !told.percent)) {
            told.percent = numberIn(member);  // the first with decimals
        } else if (key == "used" || key == "used_credits") {
            told.used = numberIn(member);
        } else if (key == "cap" || key == "limit" || key == "monthly_limit") {
            told.cap = numberIn(member);
        } else if (key == "resets_at") {
            told.resetsAt = parseIso8601(textIn(member).value_or(""), Fraction::optional);
        } else if (key == "kind") {
            told.kind = textIn(member).value_or("");
        } else if (key == "currency") {
            told.currency = textIn(member).value_or("");
        } else if (key == "is_enabled") {
            told.isEnabled = isTrue(member);
        }
        return key != "scope" || readScope(member, told.scope);
    });
}

/// Which window an element of the list is about; empty for another kind of limit.
std::optional<WindowKind> listedWindow(const Told& told) {
    if (told.kind == "session") {
        return WindowKind::session();
    }
    if (told.kind == "weekly_all") {
        return WindowKind::week();
    }
    return told.kind == "weekly_scoped" && !told.scope.empty() ? std::optional(modelWeek(told.scope)) : std::nullopt;
}

class Reader {
public:
    Reader(Instant at, ReportedLimits& limits) : m_at(at), m_limits(limits) {}

    bool readMember(std::string_view name, ondemand::value& value) {
        if (name == "limits") {
            m_limits.hasList = typeOf(value) == ondemand::json_type::array;
            return readList(value);
        }
        if (name == "model_scoped") {
            m_limits.hasModelList = typeOf(value) == ondemand::json_type::array;
            return true;
        }
        if (typeOf(value) == ondemand::json_type::null) {
            return true;
        }
        Told told;
        if (!readTold(value, told)) {
            return false;
        }
        takeMember(name, told);
        return true;
    }

    /// Those of the list that no member has.
    void finish() {
        for (const Told& told : m_listed) {
            if (const auto kind = listedWindow(told)) {
                addWindow(*kind, told);
            } else {
                addOther(titleOfMember(told.kind), told);
            }
        }
    }

private:
    bool readList(ondemand::value& value) {
        return forEachElement(value, [this](ondemand::value element) {
            Told told;
            if (!readTold(element, told)) {
                return false;
            }
            if (m_listed.size() < kMostLimits) {
                m_listed.push_back(std::move(told));
            }
            return true;
        });
    }

    void takeMember(std::string_view name, const Told& told) {
        const auto kind = windowKindOfMember(name);
        if (name == kCreditsMember) {
            m_limits.others.credits = Credits{.isEnabled = told.isEnabled,
                                              .spent = told.used.value_or(0),
                                              .cap = told.cap,
                                              .usedPercent = told.percent,
                                              .currency = told.currency,
                                              .observedAt = m_at};
        } else if (kind) {
            const bool isOfModel = kind->which() == WindowKind::Case::weekModel;
            addWindow(isOfModel && !told.scope.empty() ? modelWeek(told.scope) : *kind, told);
        } else {
            addOther(titleOfMember(name), told);
        }
    }

    /// The first of several that name the same limit counts.
    void addWindow(const WindowKind& kind, const Told& told) {
        auto& windows = m_limits.windows;
        if (!told.percent) {
            m_limits.isUnderstood = false;
            return;
        }
        const bool isKnown =
            std::ranges::any_of(windows, [&](const UsageWindow& other) { return isSameLimit(other.kind, kind); });
        if (!isKnown && windows.size() < kMostLimits) {
            windows.push_back({.kind = kind,
                               .usedPercent = *told.percent,
                               .resetsAt = told.resetsAt,
                               .observedAt = m_at,
                               .source = DataSource::usageCommand});
        }
    }

    void addOther(const std::string& name, const Told& told) {
        auto& others = m_limits.others.limits;
        const auto percent = usedPercent(told);
        const bool isKnown = std::ranges::any_of(
            others, [&](const OtherLimit& other) { return asciiLower(other.name) == asciiLower(name); });
        if (percent && !name.empty() && !isKnown && others.size() < kMostLimits) {
            others.push_back({.name = name,
                              .usedPercent = *percent,
                              .used = told.used,
                              .cap = told.cap,
                              .resetsAt = told.resetsAt,
                              .observedAt = m_at});
        }
    }

    Instant m_at;
    ReportedLimits& m_limits;
    std::vector<Told> m_listed;
};

}  // namespace

bool readReportedLimits(ondemand::object object, Instant at, ReportedLimits& limits) {
    limits = {};
    Reader reader(at, limits);
    const bool isJson = forEachMember(
        object, [&](std::string_view name, ondemand::value value) { return reader.readMember(name, value); });
    reader.finish();
    return isJson;
}

}  // namespace vorn
