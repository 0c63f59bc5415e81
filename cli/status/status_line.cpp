#include "cli/status/status_line.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "cli/terminal.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/wording/answer_text.hpp"
#include "core/wording/format.hpp"

namespace vorn::cli {
namespace {

const char* cssClass(VornStatus status) {
    constexpr std::array kClasses{"comfortable", "watch", "at-risk", "limited"};
    return kClasses.at(static_cast<std::size_t>(status));
}

const char* tmuxColour(VornStatus status) {
    constexpr std::array kColours{"default", "yellow", "colour208", "red"};
    return kColours.at(static_cast<std::size_t>(status));
}

/// "5h 72%", with the arrow of the window's own steer where it has one.
std::string shortText(const WindowAssessment& assessment, bool isDemo) {
    std::string text =
        printable(assessment.window.kind.shortTitle()) + " " + Format::percent(assessment.window.usedPercent);
    if (const auto steer = assessment.steer()) {
        text += " " + Format::shortFactor(*steer);
    }
    return isDemo ? text + " demonstration" : text;
}

/// Pango markup is what a bar makes of a tooltip: names from outside must not be read as tags.
std::string escapeMarkup(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string tooltip(const Answer& answer) {
    std::string text;
    for (const std::string& line : Format::tooltipLines(answer)) {
        text += (text.empty() ? "" : "\n") + escapeMarkup(printable(line));
    }
    return text;
}

int wholePercent(double usedPercent) {
    return std::isfinite(usedPercent) ? static_cast<int>(std::lround(std::clamp(usedPercent, 0.0, 100.0))) : 0;
}

}  // namespace

std::string plainLine(const Answer& answer) {
    const WindowAssessment* const urgent = answer.urgentAssessment();
    if (urgent == nullptr) {
        return "– " + printable(Format::tooltipLines(answer).front());
    }
    return fmt::format("{} {} · {}", shapeFor(urgent->status), shortText(*urgent, answer.isDemo),
                       Format::verdict(*urgent, answer.now));
}

std::string tmuxSegment(const Answer& answer) {
    const WindowAssessment* const urgent = answer.urgentAssessment();
    if (urgent == nullptr) {
        return {};
    }
    std::string text = shortText(*urgent, answer.isDemo);
    // tmux reads "#" as the start of a mark.
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 2)) {
        text.insert(at, 1, '#');
    }
    return fmt::format("#[fg={}]{}#[default]", tmuxColour(urgent->status), text);
}

std::string waybarModule(const Answer& answer) {
    nlohmann::json module = {{"text", ""}, {"class", "unknown"}, {"tooltip", tooltip(answer)}, {"percentage", 0}};
    if (const WindowAssessment* const urgent = answer.urgentAssessment()) {
        module["text"] = escapeMarkup(shortText(*urgent, answer.isDemo));
        module["class"] = cssClass(urgent->status);
        module["percentage"] = wholePercent(urgent->window.usedPercent);
    }
    return dumpJson(module);
}

}  // namespace vorn::cli
