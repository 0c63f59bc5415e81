#include "app/tool_tip.hpp"

#include "app/model/usage_model.hpp"
#include "ui/format/format.hpp"
#include "ui/format/head.hpp"

namespace vorn {
namespace {

std::string line(const WindowAssessment& assessment, Instant now) {
    std::string text = assessment.window.kind.title() + " " + Format::percent(assessment.window.usedPercent) + " · " +
                       Format::verdict(assessment, now);
    if (assessment.timeToReset) {
        text += " · resets in " + Format::duration(*assessment.timeToReset);
    }
    return text;
}

/// What follows it is the client's own output.
std::string firstLine(const std::string& message) {
    return message.substr(0, message.find('\n'));
}

/// What stands there before any reading.
std::string opening(const UsageModel& model) {
    switch (model.phase().kind) {
        case UsageModel::Phase::Kind::starting:
            return "Reading your usage…";
        case UsageModel::Phase::Kind::failed:
            return firstLine(model.phase().message);
        case UsageModel::Phase::Kind::ready:
            break;
    }
    return "No limits yet";
}

}  // namespace

QString toolTip(const UsageModel& model) {
    const auto head = Format::head(VornEngine::headline(model.assessments()), model.steer(), model.now());
    std::string text =
        (model.isDemo() ? "Vorn, demonstration · " : "Vorn · ") + (head ? head->headline : opening(model));
    for (const WindowAssessment& assessment : model.assessments()) {
        text += "\n" + line(assessment, model.now());
    }
    const WindowAssessment* week = model.week();
    if (week != nullptr && model.sessionWeekRatio()) {
        const double left = model.sessionWeekRatio()->sessionsLeft(week->window.usedPercent);
        text += "\n" + Format::sessionsLeft(left) + " left this week";
    }
    if (model.lastProbeError() && !model.assessments().empty()) {
        text += "\n" + firstLine(*model.lastProbeError());
    }
    return QString::fromStdString(text);
}

}  // namespace vorn
