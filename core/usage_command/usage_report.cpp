#include "core/usage_command/usage_report.hpp"

#include <algorithm>
#include <utility>

#include "core/usage_command/reported_limits_reader.hpp"

namespace vorn {
namespace {

using namespace json_members;
using Period = UsageInsights::Period;

/// The sentences and shares of a period; the longest real lists have ten.
constexpr std::size_t kMostItems = 100;

/// One period as it is told, and whether all of it could be.
struct ToldPeriod {
    Period period{};
    bool hasSentences = false;  ///< Else there are keys alone, which are for programs.
    bool hasKeys = false;
    bool isKnown = true;
};

/// "71", "Check which models …", "share covers …": as the text prints it, with a middle dot between.
bool readFinding(ondemand::value& value, ToldPeriod& told) {
    std::optional<double> percent;
    std::string title;
    std::string detail;
    const bool isJson = forEachMember(value, [&](std::string_view key, ondemand::value member) {
        if (key == "pct") {
            percent = numberIn(member);
        } else if (key == "title") {
            title = textIn(member).value_or("");
        } else if (key == "detail") {
            detail = textIn(member).value_or("");
        }
        return true;
    });
    if (!percent || title.empty()) {
        told.isKnown = false;
    } else if (told.period.findings.size() < kMostItems) {
        told.period.findings.push_back({*percent, detail.empty() ? title : title + " · " + detail});
    }
    return isJson;
}

/// Names with their shares. `sign`: what the text puts before a name.
bool readShares(ondemand::value& value, const char* sign, std::vector<UsageInsights::Share>& shares, bool& isKnown) {
    return forEachElement(value, [&](ondemand::value element) {
        std::optional<double> percent;
        std::string name;
        const bool isJson = forEachMember(element, [&](std::string_view key, ondemand::value member) {
            if (key == "pct") {
                percent = numberIn(member);
            } else if (key == "name") {
                name = textIn(member).value_or("");
            }
            return true;
        });
        if (!percent || name.empty()) {
            isKnown = false;
        } else if (shares.size() < kMostItems) {
            shares.push_back({sign + name, *percent});
        }
        return isJson;
    });
}

bool readPeriodMember(std::string_view key, ondemand::value& value, ToldPeriod& told) {
    std::vector<UsageInsights::Share> notShown;
    if (key == "request_count") {
        told.period.requests = countIn(value);
    } else if (key == "session_count") {
        told.period.sessions = countIn(value);
    } else if (key == "recommendations") {
        told.hasSentences = typeOf(value) == ondemand::json_type::array;
        return forEachElement(value, [&](ondemand::value element) { return readFinding(element, told); });
    } else if (key == "behaviors") {
        return forEachElement(value, [&](ondemand::value /*element*/) {
            told.hasKeys = true;
            return true;
        });
    } else if (key == "skills") {
        return readShares(value, "/", told.period.topSkills, told.isKnown);
    } else if (key == "agents") {
        return readShares(value, "", told.period.topSubagents, told.isKnown);
    } else if (key == "plugins" || key == "mcp_servers") {
        return readShares(value, "", notShown, told.isKnown);
    }
    return true;
}

/// The text leaves out a period without a request.
bool isEmpty(const Period& period) {
    return period.requests.value_or(0) == 0 && period.findings.empty() && period.topSkills.empty() &&
           period.topSubagents.empty();
}

/// The parts of an answer, in whatever order they come.
struct Answer {
    std::string type;
    std::string subtype;
    bool isAvailable = false;
    bool hasLimits = false;  ///< `rate_limits` is an object.
    bool hidesBreakdown = false;
    std::vector<Period> periods{};
    UsageReport report{};
};

bool readPeriod(ondemand::value& value, const char* label, Answer& answer) {
    ToldPeriod told{.period = {.label = label}};
    const bool isJson = forEachMember(
        value, [&](std::string_view key, ondemand::value member) { return readPeriodMember(key, member, told); });
    if (!told.isKnown || (told.hasKeys && !told.hasSentences)) {
        answer.hidesBreakdown = true;
    } else if (!isEmpty(told.period)) {
        answer.periods.push_back(std::move(told.period));
    }
    return isJson;
}

bool readReport(ondemand::value& value, Answer& answer, Instant now) {
    return forEachMember(value, [&](std::string_view key, ondemand::value member) {
        if (key == "subscription_type") {
            answer.report.plan = textIn(member).value_or("");
        } else if (key == "rate_limits_available") {
            answer.isAvailable = isTrue(member);
        } else if (key == "rate_limits") {
            ondemand::object limits;
            answer.hasLimits = member.get_object().get(limits) == simdjson::SUCCESS;
            return !answer.hasLimits || readReportedLimits(limits, now, answer.report.limits);
        } else if (key == "behaviors") {
            return forEachMember(member, [&](std::string_view name, ondemand::value period) {
                if (name == "day") {
                    return readPeriod(period, "Last 24h", answer);
                }
                return name != "week" || readPeriod(period, "Last 7d", answer);
            });
        }
        return true;
    });
}

bool readResponse(ondemand::value& value, Answer& answer, Instant now) {
    return forEachMember(value, [&](std::string_view key, ondemand::value member) {
        if (key == "subtype") {
            answer.subtype = textIn(member).value_or("");
        }
        return key != "response" || readReport(member, answer, now);
    });
}

UsageReport::Outcome outcomeOf(const Answer& answer) {
    using Outcome = UsageReport::Outcome;
    const ReportedLimits& limits = answer.report.limits;
    if (answer.subtype == "error") {
        return Outcome::refused;
    }
    if (answer.subtype != "success") {
        return Outcome::unreadable;
    }
    if (answer.hasLimits && (!limits.windows.empty() || !limits.others.isEmpty())) {
        return Outcome::figures;
    }
    if (answer.hasLimits && !limits.isUnderstood) {
        return Outcome::unreadable;
    }
    return answer.isAvailable ? Outcome::noFigures : Outcome::noPlan;
}

UsageReport reportOf(Answer answer, Instant now) {
    const UsageReport::Outcome outcome = outcomeOf(answer);
    UsageReport report = std::move(answer.report);
    report.outcome = outcome;
    report.hidesBreakdown = answer.hidesBreakdown;
    if (!answer.hidesBreakdown && !answer.periods.empty()) {
        report.insights = UsageInsights{.periods = std::move(answer.periods), .observedAt = now};
    }
    return report;
}

UsageReport readLine(ondemand::parser& parser, std::string_view line, Instant now) {
    Answer answer;
    const simdjson::padded_string padded(line);
    ondemand::document document;
    ondemand::object object;
    const auto take = [&](std::string_view key, ondemand::value member) {
        if (key == "type") {
            answer.type = textIn(member).value_or("");
        }
        return key != "response" || readResponse(member, answer, now);
    };
    const bool isJson = parser.iterate(padded).get(document) == simdjson::SUCCESS &&
                        document.get_object().get(object) == simdjson::SUCCESS && forEachMember(object, take) &&
                        document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    return isJson && answer.type == "control_response" ? reportOf(std::move(answer), now) : UsageReport();
}

}  // namespace

const std::vector<std::string>& UsageReport::arguments() {
    static const std::vector<std::string> kArguments{
        "-p",          "--input-format", "stream-json", "--output-format",
        "stream-json", "--verbose",      "--safe-mode", "--no-session-persistence"};
    return kArguments;
}

const std::string& UsageReport::request() {
    static const std::string kRequest =
        R"({"type":"control_request","request_id":"1","request":{"subtype":"get_usage"}})"
        "\n";
    return kRequest;
}

UsageReport UsageReport::read(std::string_view output, Instant now) {
    ondemand::parser parser;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        output.remove_prefix(std::min(line.size() + 1, output.size()));
        if (line.find("control_response") == std::string_view::npos) {
            continue;
        }
        const UsageReport report = readLine(parser, line, now);
        if (report.outcome != Outcome::unreadable) {
            return report;
        }
    }
    return {};
}

}  // namespace vorn
