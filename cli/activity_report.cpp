#include "cli/activity_report.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "core/support/json.hpp"
#include "core/support/text.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/wording/activity_text.hpp"
#include "core/wording/format.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kSlices = 8;
constexpr std::size_t kMargin = 2;  // cells
constexpr std::size_t kTimelineRows = 4;
constexpr std::size_t kNameCells = 24;
constexpr std::size_t kShareBarCells = 24;
constexpr std::size_t kNarrowestShareBar = 4;
/// Besides name and bar a row holds margins, the share and the weight.
constexpr std::size_t kSliceOverhead = 17;

struct NamedSpan {
    const char* label;
    Seconds span;
};
constexpr std::array<NamedSpan, 4> kSpans = {{{"1 h", 1h}, {"5 h", 5h}, {"24 h", 24h}, {"7 d", 168h}}};

/// The width of a bucket that people count in, such that the span fits into the columns.
Seconds bucketFor(Seconds span, std::size_t columns) {
    constexpr std::array<Seconds, 11> kWidths = {30s, 1min, 2min, 5min, 10min, 15min, 30min, 1h, 2h, 6h, 24h};
    const auto fits = [&](Seconds width) {
        return span / width <= static_cast<double>(columns);
    };
    const auto* found = std::ranges::find_if(kWidths, fits);
    return found == kWidths.end() ? Seconds{span / static_cast<double>(columns)} : *found;
}

/// Upright bars over several rows, an eighth of a cell fine with colour; a single row of digits without.
std::string drawTimeline(const ActivityReport& report, const Terminal& terminal) {
    double highest = 0;
    for (const auto& bucket : report.timeline) {
        highest = std::max(highest, bucket.weight);
    }
    std::string drawn;
    if (!terminal.colour) {
        for (const auto& bucket : report.timeline) {
            const auto level = highest > 0 ? std::ceil(9 * bucket.weight / highest) : 0;
            drawn += level > 0 ? fmt::format("{:.0f}", level) : ".";
        }
        return "  " + drawn + "\n";
    }
    constexpr std::array<const char*, 9> kLevels = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    for (std::size_t row = kTimelineRows; row-- > 0;) {
        std::string cells;
        for (const auto& bucket : report.timeline) {
            const double eighths =
                highest > 0 ? std::ceil(8.0 * kTimelineRows * bucket.weight / highest) - 8.0 * static_cast<double>(row)
                            : 0;
            cells += kLevels.at(static_cast<std::size_t>(std::clamp(eighths, 0.0, 8.0)));
        }
        drawn += "  " + paint(terminal, Ink::accent, cells) + "\n";
    }
    return drawn;
}

/// The ends of the time line, at its two edges.
std::string timelineLabels(const ActivityReport& report) {
    const std::string first = Format::clock(report.now - report.since, report.now);
    const std::string last = Format::clock(report.now, report.now);
    const std::size_t taken = displayWidth(first) + displayWidth(last);
    const std::size_t gap = report.timeline.size() > taken ? report.timeline.size() - taken : 1;
    return "  " + first + std::string(gap, ' ') + last;
}

std::string drawSlices(const char* title, const std::vector<ActivitySummary::Slice>& slices, const Terminal& terminal) {
    const std::size_t room = std::max(terminal.width, kSliceOverhead + 2 * kNarrowestShareBar) - kSliceOverhead;
    const std::size_t nameCells = std::min(kNameCells, room - kNarrowestShareBar);
    const std::size_t barCells = std::min(kShareBarCells, room - nameCells);
    std::string drawn = "\n  " + paint(terminal, Ink::strong, title) + "\n";
    for (const auto& slice : slices) {
        drawn +=
            fmt::format("  {}  {}  {:>4}  {}\n", fitted(slice.name, nameCells),
                        drawBar(terminal, {.filled = slice.share, .cells = barCells}),
                        Format::percent(slice.share * 100), paint(terminal, Ink::faint, Format::tokens(slice.weight)));
    }
    return drawn;
}

nlohmann::json slicesJson(const std::vector<ActivitySummary::Slice>& slices) {
    auto list = nlohmann::json::array();
    for (const auto& slice : slices) {
        list.push_back({{"name", slice.name}, {"weight", slice.weight}, {"share", slice.share}});
    }
    return list;
}

}  // namespace

ActivityReport reportActivity(const ActivitySummary& activity, ActivityRequest request) {
    const auto [now, since] = std::pair(request.now, request.since);
    const Instant start = now - since;
    // A reply written this very moment is part of the report.
    const Instant end = now + Seconds{1};
    ActivityReport report{
        .now = now, .since = since, .root = std::move(request.root), .bucket = bucketFor(since, request.columns)};
    for (const ActivityEvent& event : activity.events(start, end)) {
        ++report.events;
        report.tokens += event.tokens;
    }
    report.weight = activity.weight(start, end);
    for (const NamedSpan& named : kSpans) {
        report.totals.push_back({named.label, named.span, activity.weight(now - named.span, end)});
    }
    report.timeline = activity.timeline(start, now, report.bucket);
    report.projects = activity.projects(start, kSlices);
    report.models = activity.models(start, kSlices);
    report.lastEventAt = activity.lastEventAt();
    return report;
}

std::string renderActivity(const ActivityReport& report, const Terminal& terminal) {
    std::string text = fmt::format("Local activity of the last {} · {}, weight {}\n\n", Format::duration(report.since),
                                   Format::count(static_cast<std::int64_t>(report.events), "reply", "replies"),
                                   Format::tokens(report.weight));
    std::string totals;
    for (const auto& total : report.totals) {
        totals += fmt::format("{}{} {}", totals.empty() ? "" : " · ", total.label, Format::tokens(total.weight));
    }
    for (const std::string& line : wrapped(totals, std::max(terminal.width, kMargin + 1) - kMargin)) {
        text += "  " + paint(terminal, Ink::faint, line) + "\n";
    }
    if (report.events == 0) {
        text += fmt::format("\n  Nothing found in {}\n", printable(report.root.string()));
        return text;
    }
    text += "\n" + drawTimeline(report, terminal);
    text += paint(terminal, Ink::faint, timelineLabels(report)) + "\n";
    text += paint(terminal, Ink::faint, fmt::format("  {} a column", Format::duration(report.bucket))) + "\n";
    text += drawSlices("Projects", report.projects, terminal);
    text += drawSlices("Models", report.models, terminal);
    if (report.lastEventAt) {
        text += paint(terminal, Ink::faint, "\n  " + Format::lastReply(*report.lastEventAt, report.now).text() + "\n");
    }
    return text;
}

nlohmann::json activityJson(const ActivityReport& report) {
    auto timeline = nlohmann::json::array();
    for (const auto& bucket : report.timeline) {
        timeline.push_back({{"start", formatIso8601Milliseconds(bucket.start)}, {"weight", bucket.weight}});
    }
    nlohmann::json totals = nlohmann::json::object();
    for (const auto& total : report.totals) {
        totals[fmt::format("{:.0f}", total.span.count())] = total.weight;
    }
    nlohmann::json object = {
        {"now", formatIso8601Milliseconds(report.now)},
        {"sinceSeconds", report.since.count()},
        {"root", repairUtf8(report.root.string())},
        {"events", report.events},
        {"tokens",
         {{"input", report.tokens.input},
          {"output", report.tokens.output},
          {"cacheRead", report.tokens.cacheRead},
          {"cacheWrite5m", report.tokens.cacheWrite5m},
          {"cacheWrite1h", report.tokens.cacheWrite1h}}},
        {"weight", report.weight},
        {"weightOfLastSeconds", std::move(totals)},
        {"projects", slicesJson(report.projects)},
        {"models", slicesJson(report.models)},
        {"bucketSeconds", report.bucket.count()},
        {"timeline", std::move(timeline)},
    };
    if (report.lastEventAt) {
        object["lastEventAt"] = formatIso8601Milliseconds(*report.lastEventAt);
    }
    return object;
}

}  // namespace vorn::cli
