#include "fuzz/reading_checks.hpp"

#include <cmath>

#include <nlohmann/json.hpp>

#include "core/analysis/assess.hpp"
#include "core/data/history/history_line.hpp"
#include "core/data/usage_state.hpp"
#include "core/wording/format.hpp"
#include "fuzz/fuzz_target.hpp"

namespace vorn::fuzz {
namespace {

void requireFinite(const std::optional<double>& number) {
    require(!number || std::isfinite(*number), "a judgement's numbers are finite");
}

void requireFinite(const std::optional<Seconds>& span) {
    require(!span || std::isfinite(span->count()), "a judgement's spans are finite");
}

void requireSound(const WindowAssessment& assessment) {
    requireFinite(assessment.elapsedFraction);
    requireFinite(assessment.evenPacePercent);
    requireFinite(assessment.ratePerHour);
    requireFinite(assessment.projectedAtReset);
    requireFinite(assessment.timeToLimit);
    requireFinite(assessment.timeToReset);
    requireFinite(assessment.sustainableRatePerHour);
    requireUtf8(Format::verdict(assessment, kNow));
    requireUtf8(Format::percent(assessment.projectedAtReset.value_or(0)));
    requireUtf8(Format::rate(assessment.ratePerHour.value_or(0), assessment.window.kind));
    requireUtf8(Format::duration(assessment.timeToLimit.value_or(Seconds{})));
    requireUtf8(Format::pace(assessment.paceDelta().value_or(0)));
    if (const auto steer = assessment.steer()) {
        requireUtf8(Format::steerHeadline(*steer) + Format::factor(*steer));
    }
}

void requireSound(const std::vector<UsageInsights::Share>& shares) {
    for (const auto& share : shares) {
        require(std::isfinite(share.percent) && share.percent >= 0, "a share is a percentage");
        require(!share.name.empty(), "a share has a name");
        requireUtf8(share.name);
    }
}

}  // namespace

void requireSound(const UsageWindow& window) {
    require(std::isfinite(window.usedPercent), "a percentage is finite");
    require(std::isfinite(secondsSince1970(window.observedAt)), "a time of observation is finite");
    require(!window.resetsAt || std::isfinite(secondsSince1970(*window.resetsAt)), "a reset time is finite");
    requireUtf8(window.kind.key());
    require(WindowKind::fromKey(window.kind.key()) == window.kind, "a kind is the same after a way through its key");
    require(decodeUsageWindow(encode(window, DateCoding::secondsSince1970), DateCoding::secondsSince1970) == window,
            "a reading is the same after a way through JSON");
    std::string line;
    const HistorySample sample = HistorySample::of(window);
    appendHistoryLine(line, sample, window.source);
    const std::size_t length = line.find('\n');
    line.append(HistoryLineDecoder::padding, ' ');
    require(HistoryLineDecoder().decode(std::string_view(line).substr(0, length)) ==
                RecordedSample{.sample = sample, .source = window.source},
            "a reading is the same after a way through the history");
    requireUtf8(formatIso8601(window.observedAt));
    if (window.resetsAt) {
        requireUtf8(Format::clock(*window.resetsAt, kNow) + formatIso8601Milliseconds(*window.resetsAt));
    }
}

void requireSound(const UsageInsights& insights) {
    for (const auto& period : insights.periods) {
        requireUtf8(period.label);
        require(period.requests.value_or(0) >= 0 && period.sessions.value_or(0) >= 0, "counts are counts");
        requireSound(period.topSkills);
        requireSound(period.topSubagents);
        for (const auto& finding : period.findings) {
            require(std::isfinite(finding.percent) && finding.percent >= 0, "a finding has a percentage");
            requireUtf8(finding.text);
        }
    }
    constexpr auto kDates = DateCoding::secondsSince1970;
    require(decodeUsageInsights(encode(insights, kDates), kDates) == insights,
            "a breakdown is the same after a way through JSON");
}

void requireAssessable(std::span<const UsageWindow> windows, const HistoryIndex& history) {
    UsageState state;
    state.merge(windows);
    state.noticeTime(kNow);
    for (const UsageWindow& window : state.current(kNow)) {
        const MatchingSamples matching = history.matching(window);
        requireSound(VornEngine::assess(window, {.history = matching, .now = kNow}));
    }
}

}  // namespace vorn::fuzz
