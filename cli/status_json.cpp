#include "cli/status_json.hpp"

#include <cmath>

#include "core/data/reset_plan.hpp"
#include "core/support/json.hpp"
#include "ui/format/format.hpp"

namespace vorn::cli {
namespace {

using nlohmann::json;

const char* statusKey(VornStatus status) {
    switch (status) {
        case VornStatus::comfortable:
            return "comfortable";
        case VornStatus::watch:
            return "watch";
        case VornStatus::atRisk:
            return "atRisk";
        case VornStatus::limited:
            break;
    }
    return "limited";
}

const char* directionKey(VornSteer::Direction direction) {
    switch (direction) {
        case VornSteer::Direction::stop:
            return "stop";
        case VornSteer::Direction::easeOff:
            return "easeOff";
        case VornSteer::Direction::onPace:
            return "onPace";
        case VornSteer::Direction::speedUp:
            break;
    }
    return "speedUp";
}

/// JSON has no infinity: such a number is left out, as an absent one is.
void put(json& object, const char* key, std::optional<double> number) {
    if (number && std::isfinite(*number)) {
        object[key] = *number;
    }
}

void put(json& object, const char* key, std::optional<Seconds> span) {
    put(object, key, span ? std::optional(span->count()) : std::nullopt);
}

void put(json& object, const char* key, std::optional<Instant> instant) {
    if (instant) {
        object[key] = formatIso8601(*instant);
    }
}

json steerJson(const VornSteer& steer) {
    json object = {
        {"kind", steer.kind.key()},
        {"direction", directionKey(steer.direction())},
        {"tilt", steer.tilt()},
        {"angleDegrees", steer.angleDegrees()},
        {"basis", rawValue(steer.basis)},
        {"headline", Format::steerHeadline(steer)},
        {"reason", Format::steerReason(steer)},
    };
    put(object, "factor", steer.factor);
    return object;
}

json ratesJson(const std::vector<RateReading>& rates) {
    json object = json::object();
    for (const RateReading& reading : rates) {
        put(object, rawValue(reading.horizon), reading.ratePerHour);
    }
    return object;
}

json windowJson(const StatusReport::Card& card, Instant now, bool withRates) {
    const WindowAssessment& assessment = card.assessment;
    const UsageWindow& window = assessment.window;
    json object = {
        {"kind", window.kind.key()},
        {"title", window.kind.title()},
        {"observedAt", formatIso8601(window.observedAt)},
        {"source", rawValue(window.source)},
        {"status", statusKey(assessment.status)},
        {"verdict", Format::verdict(assessment, now)},
        {"rateBasis", rawValue(assessment.rateBasis)},
    };
    put(object, "usedPercent", window.usedPercent);
    put(object, "resetsAt", window.resetsAt);
    put(object, "plannedResetAt", assessment.plannedResetAt);
    put(object, "horizon", assessment.horizon());
    put(object, "elapsedFraction", assessment.elapsedFraction);
    put(object, "evenPacePercent", assessment.evenPacePercent);
    put(object, "paceDelta", assessment.paceDelta());
    put(object, "ratePerHour", assessment.ratePerHour);
    put(object, "sustainableRatePerHour", assessment.sustainableRatePerHour);
    put(object, "projectedAtReset", assessment.projectedAtReset);
    put(object, "unusedAtReset", assessment.unusedAtReset());
    put(object, "secondsToLimit", assessment.timeToLimit);
    put(object, "secondsToReset", assessment.timeToReset);
    if (const auto steer = assessment.steer()) {
        object["steer"] = steerJson(*steer);
    }
    if (withRates) {
        object["rates"] = ratesJson(card.rates);
    }
    return object;
}

json ratioJson(const StatusReport& report) {
    const SessionWeekRatio& ratio = *report.ratio;
    json object = {{"sessions", ratio.sessions}};
    put(object, "sessionPoints", ratio.sessionPoints);
    put(object, "weekPercentPerSession", ratio.weekPercentPerSession());
    put(object, "sessionsPerWeek", ratio.sessionsPerWeek());
    put(object, "sessionsLeft", report.sessionsLeft);
    return object;
}

json relayJson(const RelayState& relay) {
    json object = {{"state", key(relay)}};
    if (relay.downstream) {
        object["downstreamCommand"] = *relay.downstream;
    }
    if (!relay.problem.empty()) {
        object["problem"] = relay.problem;
    }
    return object;
}

json failureJson(const ProbeFailure& failure) {
    json object = {{"message", failure.message}};
    if (!failure.advice.empty()) {
        object["advice"] = failure.advice;
    }
    put(object, "retryAt", failure.retryAt);
    return object;
}

}  // namespace

json statusJson(const StatusReport& report, bool withRates) {
    json object = {{"now", formatIso8601(report.now)}, {"windows", json::array()}};
    for (const auto& card : report.cards) {
        object["windows"].push_back(windowJson(card, report.now, withRates));
    }
    if (report.head && report.headline) {
        object["headline"] = {{"text", report.head->headline},
                              {"reason", report.head->reason},
                              {"kind", report.headline->window.kind.key()},
                              {"status", statusKey(report.headline->status)}};
    }
    if (report.steer) {
        object["steer"] = steerJson(*report.steer);
    }
    if (report.ratio) {
        object["sessionWeekRatio"] = ratioJson(report);
    }
    if (report.insights) {
        object["insights"] = encode(*report.insights, DateCoding::iso8601);
    }
    object["resetPlan"] = encode(report.plan, DateCoding::iso8601);
    put(object, "observedAt", report.observedAt);
    if (report.source) {
        object["source"] = rawValue(*report.source);
    }
    if (report.relay) {
        object["statusLine"] = relayJson(*report.relay);
    }
    if (report.failure) {
        object["failure"] = failureJson(*report.failure);
    }
    return object;
}

}  // namespace vorn::cli
