#include "cli/status_line.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "cli/terminal.hpp"
#include "core/support/json.hpp"
#include "core/support/unicode/display_width.hpp"
#include "ui/format/format.hpp"

namespace vorn::cli {
namespace {

const char* cssClass(VornStatus status) {
    switch (status) {
        case VornStatus::comfortable:
            return "comfortable";
        case VornStatus::watch:
            return "watch";
        case VornStatus::atRisk:
            return "at-risk";
        case VornStatus::limited:
            break;
    }
    return "limited";
}

const char* tmuxColour(VornStatus status) {
    switch (status) {
        case VornStatus::comfortable:
            return "default";
        case VornStatus::watch:
            return "yellow";
        case VornStatus::atRisk:
            return "colour208";
        case VornStatus::limited:
            break;
    }
    return "red";
}

/// "5h 72%", with the arrow of the window's own steer where it has one.
std::string shortText(const WindowAssessment& assessment) {
    std::string text =
        printable(assessment.window.kind.shortTitle()) + " " + Format::percent(assessment.window.usedPercent);
    if (const auto steer = assessment.steer()) {
        text += " " + Format::factor(*steer);
    }
    return text;
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
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

std::string tooltip(const StatusReport& report) {
    std::string text;
    const auto addLine = [&](std::string_view line) {
        if (!line.empty()) {
            text += (text.empty() ? "" : "\n") + escapeMarkup(printable(line));
        }
    };
    if (report.head) {
        addLine(report.head->headline);
        addLine(report.head->reason);
    }
    for (const auto& card : report.cards) {
        const auto& window = card.assessment.window;
        addLine(fmt::format("{} {} · {}", window.kind.title(), Format::percent(window.usedPercent),
                            Format::verdict(card.assessment, report.now)));
    }
    if (report.failure) {
        addLine(firstLine(report.failure->message));
    }
    return text;
}

int wholePercent(double usedPercent) {
    return std::isfinite(usedPercent) ? static_cast<int>(std::lround(std::clamp(usedPercent, 0.0, 100.0))) : 0;
}

}  // namespace

std::string plainLine(const StatusReport& report) {
    if (!report.headline) {
        const std::string message = report.failure ? report.failure->message : "no reading yet";
        return "– " + printable(firstLine(message));
    }
    return fmt::format("{} {} · {}", shapeFor(report.headline->status), shortText(*report.headline),
                       Format::verdict(*report.headline, report.now));
}

std::string tmuxSegment(const StatusReport& report) {
    if (!report.headline) {
        return {};
    }
    std::string text = shortText(*report.headline);
    // tmux reads "#" as the start of a mark.
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 2)) {
        text.insert(at, 1, '#');
    }
    return fmt::format("#[fg={}]{}#[default]", tmuxColour(report.headline->status), text);
}

std::string waybarModule(const StatusReport& report) {
    nlohmann::json module = {{"text", ""}, {"class", "unknown"}, {"tooltip", tooltip(report)}, {"percentage", 0}};
    if (report.headline) {
        module["text"] = escapeMarkup(shortText(*report.headline));
        module["class"] = cssClass(report.headline->status);
        module["percentage"] = wholePercent(report.headline->window.usedPercent);
    }
    return dumpJson(module);
}

}  // namespace vorn::cli
