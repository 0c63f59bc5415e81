#include "cli/status/status_json.hpp"

#include <array>
#include <cmath>

#include "core/data/reset_plan.hpp"
#include "core/support/json.hpp"
#include "core/wording/failure_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"

namespace vorn::cli {
namespace {

using nlohmann::json;

const char* statusKey(VornStatus status) {
    constexpr std::array kKeys{"comfortable", "watch", "atRisk", "limited"};
    return kKeys.at(static_cast<std::size_t>(status));
}

const char* directionKey(VornSteer::Direction direction) {
    constexpr std::array kKeys{"stop", "easeOff", "onPace", "speedUp"};
    return kKeys.at(static_cast<std::size_t>(direction));
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

json windowJson(const Answer::Card& card, Instant now, bool withRates) {
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

json ratioJson(const SessionWeekRatio& ratio, std::optional<double> sessionsLeft) {
    json object = {{"sessions", ratio.sessions}};
    put(object, "sessionPoints", ratio.sessionPoints);
    put(object, "weekPercentPerSession", ratio.weekPercentPerSession());
    put(object, "sessionsPerWeek", ratio.sessionsPerWeek());
    put(object, "sessionsLeft", sessionsLeft);
    return object;
}

json relayJson(const RelayState& relay, Instant now) {
    json object = {{"state", key(relay)}};
    if (relay.connection.downstream) {
        object["downstreamCommand"] = *relay.connection.downstream;
    }
    if (const std::string problem = problemOf(relay, now); !problem.empty()) {
        object["problem"] = problem;
    }
    return object;
}

json failureJson(const ProbeFailure& failure, std::optional<Instant> retryAt) {
    json object = {{"kind", rawValue(failure.kind)},
                   {"cause", rawValue(failure.cause)},
                   {"message", description(failure)},
                   {"text", Format::sentence(failure)}};
    if (const std::string whatToDo = Format::advice(failure); !whatToDo.empty()) {
        object["advice"] = whatToDo;
    }
    put(object, "retryAt", retryAt);
    return object;
}

json otherLimitJson(const OtherLimit& limit) {
    json object = {{"name", limit.name}, {"observedAt", formatIso8601(limit.observedAt)}};
    put(object, "usedPercent", limit.usedPercent);
    put(object, "used", limit.used);
    put(object, "cap", limit.cap);
    put(object, "resetsAt", limit.resetsAt);
    return object;
}

json creditsJson(const Credits& credits) {
    json object = {{"enabled", credits.isEnabled}, {"observedAt", formatIso8601(credits.observedAt)}};
    put(object, "spentHundredths", credits.spent);
    put(object, "capHundredths", credits.cap);
    put(object, "usedPercent", credits.usedPercent);
    if (!credits.currency.empty()) {
        object["currency"] = credits.currency;
    }
    return object;
}

void putOtherLimits(json& object, const OtherLimits& others) {
    for (const OtherLimit& limit : others.limits) {
        object["otherLimits"].push_back(otherLimitJson(limit));
    }
    if (others.credits) {
        object["credits"] = creditsJson(*others.credits);
    }
}

void putConclusions(json& object, const Answer& answer) {
    const auto head = Format::head(answer);
    if (const WindowAssessment* const urgent = answer.urgentAssessment(); head && urgent != nullptr) {
        object["headline"] = {{"text", head->headline},
                              {"reason", head->reason},
                              {"kind", urgent->window.kind.key()},
                              {"status", statusKey(urgent->status)}};
    }
    if (answer.steer) {
        object["steer"] = steerJson(*answer.steer);
    }
    if (answer.ratio) {
        object["sessionWeekRatio"] = ratioJson(*answer.ratio, answer.sessionsLeft);
    }
}

}  // namespace

json statusJson(const Answer& answer, const std::optional<RelayState>& relay, bool withRates) {
    json object = {{"now", formatIso8601(answer.now)}, {"windows", json::array()}};
    for (const Answer::Card& card : answer.cards) {
        object["windows"].push_back(windowJson(card, answer.now, withRates));
    }
    putOtherLimits(object, answer.others);
    putConclusions(object, answer);
    if (answer.insights) {
        object["insights"] = encode(*answer.insights, DateCoding::iso8601);
    }
    object["resetPlan"] = encode(answer.plan, DateCoding::iso8601);
    put(object, "observedAt", answer.observedAt);
    if (answer.source) {
        object["source"] = rawValue(*answer.source);
    }
    if (relay) {
        object["statusLine"] = relayJson(*relay, answer.now);
    }
    put(object, "figuresOf", answer.asking.figuresOf);
    if (answer.asking.failure) {
        object["failure"] = failureJson(*answer.asking.failure, answer.asking.retryAt);
    }
    if (answer.isDemo) {
        object["demonstration"] = true;
    }
    return object;
}

}  // namespace vorn::cli
