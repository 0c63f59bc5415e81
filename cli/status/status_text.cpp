#include "cli/status/status_text.hpp"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "core/support/unicode/display_width.hpp"
#include "core/wording/activity_text.hpp"
#include "core/wording/answer_text.hpp"
#include "core/wording/failure_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"
#include "core/wording/limit_text.hpp"
#include "core/wording/outcome_text.hpp"
#include "core/wording/plan_text.hpp"
#include "core/wording/window_text.hpp"

namespace vorn::cli {
namespace {

constexpr std::size_t kNarrowestTitle = 8;
constexpr std::size_t kWidestTitle = 24;
constexpr std::size_t kNarrowestBar = 10;
constexpr std::size_t kWidestBar = 40;
/// With less room than this beside titles and words, both give way.
constexpr std::size_t kComfortableBar = 18;
/// Besides title and bar a row holds margins, the percentage, the status's shape and its longest word.
constexpr std::size_t kRowOverhead = 26;
/// The same without that word.
constexpr std::size_t kShortRowOverhead = 13;
constexpr std::size_t kLabelCells = 10;
constexpr std::size_t kNarrowestText = 12;
constexpr std::size_t kWidestPeriod = 16;

/// Lays the answer out line by line.
class StatusPage {
public:
    StatusPage(const Answer& answer, const Terminal& terminal, const StatusTextOptions& options)
        : m_answer(answer), m_terminal(terminal), m_options(options) {
        for (const auto& card : answer.cards) {
            m_titleCells = std::max(m_titleCells, displayWidth(card.assessment.window.kind.title()));
        }
        for (const Format::LimitLine& limit : Format::limitLines(answer.others, answer.now)) {
            m_titleCells = std::max(m_titleCells, displayWidth(limit.title));
        }
        m_titleCells = std::min(m_titleCells, kWidestTitle);
        m_isNarrow = m_titleCells + kComfortableBar + kRowOverhead > terminal.width;
        const std::size_t overhead = m_isNarrow ? kShortRowOverhead : kRowOverhead;
        if (m_isNarrow) {
            m_titleCells = std::clamp(roomBeside(overhead + kNarrowestBar), kNarrowestTitle, m_titleCells);
        }
        m_barCells = std::clamp(roomBeside(overhead + m_titleCells), kNarrowestBar, kWidestBar);
    }

    std::string render(const std::optional<RelayState>& relay) {
        if (m_answer.isDemo) {
            line(Format::freshness(m_answer).text());
            blank();
        }
        head();
        for (const auto& card : m_answer.cards) {
            window(card);
        }
        otherLimits();
        blank();
        for (const Outcome& moved : m_answer.moved) {
            paragraph("  ", Format::movedText(moved, m_answer.now), Ink::plain);
        }
        paragraph("  ", Format::weekSessions(m_answer).text(), Ink::plain);
        plannedResets();
        insights();
        blank();
        paragraph("  ", Format::age(m_answer), Ink::faint);
        paragraph("  ", relay ? printable(sentence(*relay, m_answer.now)) : "", Ink::faint);
        return std::move(m_text);
    }

private:
    void line(std::string_view text = {}) {
        m_text += text;
        m_text += '\n';
    }
    void blank() {
        if (!m_text.empty() && !m_text.ends_with("\n\n")) {
            line();
        }
    }
    [[nodiscard]] std::size_t roomBeside(std::size_t taken) const {
        return m_terminal.width > taken ? m_terminal.width - taken : 0;
    }
    /// Text as wide as the terminal, with something before its first line; nothing for an empty one. Elsewhere it is
    /// one line.
    void paragraph(std::string_view lead, std::string_view text, Ink ink, Ink leadInk = Ink::plain) {
        if (text.empty()) {
            return;
        }
        const std::size_t indent = displayWidth(lead);
        const auto parts = m_terminal.interactive ? wrapped(text, std::max(roomBeside(indent), kNarrowestText))
                                                  : std::vector{printable(text)};
        std::string before = paint(m_terminal, leadInk, lead);
        for (const std::string& part : parts) {
            line(before + paint(m_terminal, ink, part));
            before.assign(indent, ' ');
        }
    }
    [[nodiscard]] std::string detailIndent() const { return std::string(m_isNarrow ? 4 : m_titleCells + 4, ' '); }
    /// Text below a window's title.
    void detail(std::string_view text, Ink ink = Ink::faint) { paragraph(detailIndent(), text, ink); }
    /// A line of a table below a window's title, which is narrow enough by itself.
    void row(std::string_view text) { line(detailIndent() + paint(m_terminal, Ink::faint, text)); }

    void head() {
        const auto head = Format::head(m_answer);
        const WindowAssessment* const about = m_answer.headAssessment();
        if (head && about != nullptr) {
            paragraph(fmt::format("{} ", shapeFor(about->status)), head->headline, Ink::strong, inkFor(about->status));
            paragraph("  ", head->reason, Ink::plain);
        }
    }

    void window(const Answer::Card& card) {
        const WindowAssessment& assessment = card.assessment;
        const Ink ink = inkFor(assessment.status);
        blank();
        gauge(assessment, ink);
        detail(Format::verdict(assessment, m_answer.now), assessment.status >= VornStatus::atRisk ? ink : Ink::plain);
        detail(Format::resetText(assessment, m_answer.now).text());
        if (assessment.timeToReset) {
            detail(Format::joined({Format::paceText(assessment).text(), landingText(assessment)}));
        }
        detail(Format::plannedResetNote(assessment));
        if (m_options.rates) {
            rates(card);
        }
    }

    /// Title, bar, percentage and status.
    void gauge(const WindowAssessment& assessment, Ink ink) {
        std::string row = "  " + fitted(assessment.window.kind.title(), m_titleCells) + "  ";
        row += drawBar(m_terminal, {.filled = assessment.window.usedPercent / 100,
                                    .projected = share(assessment.projectedAtReset),
                                    .tick = assessment.elapsedFraction,
                                    .cells = m_barCells,
                                    .ink = ink});
        row += fmt::format("  {:>4}  ", Format::percent(assessment.window.usedPercent));
        row += paint(m_terminal, ink,
                     m_isNarrow ? shapeFor(assessment.status)
                                : fmt::format("{} {}", shapeFor(assessment.status), label(assessment.status)));
        line(row);
    }

    void otherLimits() {
        for (const Format::LimitLine& limit : Format::limitLines(m_answer.others, m_answer.now)) {
            const Ink ink = limit.isReached ? Ink::limited : Ink::accent;
            const std::string title = "  " + fitted(limit.title, m_titleCells) + "  ";
            blank();
            if (limit.usedPercent) {
                line(title +
                     drawBar(m_terminal, {.filled = *limit.usedPercent / 100, .cells = m_barCells, .ink = ink}) +
                     fmt::format("  {:>4}", Format::percent(*limit.usedPercent)));
                detail(limit.text);
            } else {
                paragraph(title, limit.text, Ink::plain);
            }
        }
    }

    static std::optional<double> share(std::optional<double> percent) {
        return percent ? std::optional(*percent / 100) : std::nullopt;
    }

    /// What the verdict leaves out: where the rate leads although the limit comes first.
    static std::string landingText(const WindowAssessment& assessment) {
        if (assessment.status != VornStatus::atRisk || !assessment.projectedAtReset) {
            return {};
        }
        return fmt::format("would land at {}", Format::percent(*assessment.projectedAtReset));
    }

    void rates(const Answer::Card& card) {
        const WindowKind& kind = card.assessment.window.kind;
        const auto& sustainable = card.assessment.sustainableRatePerHour;
        for (const RateReading& reading : card.rates) {
            const std::string title = fitted(label(reading.horizon), kLabelCells) + "  ";
            if (!reading.ratePerHour) {
                paragraph(detailIndent() + title + "–  ",
                          Format::whyNoRate(reading.horizon, kind, m_answer.usesActivity), Ink::faint, Ink::faint);
                continue;
            }
            const std::string room = Format::room(*reading.ratePerHour, sustainable.value_or(0));
            row(title + fmt::format("{:>9}", Format::rate(*reading.ratePerHour, kind)) +
                (room.empty() ? "" : "  " + room));
        }
        if (sustainable) {
            row(fitted("Sustained", kLabelCells) + fmt::format("  {:>9}", Format::rate(*sustainable, kind)));
        }
    }

    void plannedResets() {
        const ResetPlan& plan = m_answer.plan;
        if (plan.planned.empty() && plan.banked == 0) {
            return;
        }
        blank();
        line("  Planned resets" + (plan.banked > 0 ? " · " + Format::banked(plan.banked) : std::string()));
        for (const PlannedReset& reset : plan.planned) {
            paragraph("    ",
                      Format::joined({Format::plannedMoment(reset).text(), Format::plannedWhen(reset, m_answer.now),
                                      Format::plannedScope(reset)}),
                      Ink::plain);
        }
    }

    void insights() {
        if (!m_answer.insights) {
            return;
        }
        for (const auto& period : m_answer.insights->periods) {
            blank();
            const std::string counts =
                Format::joined({countText(period.requests, "request"), countText(period.sessions, "session")});
            const std::string label = elide(period.label, kWidestPeriod);
            if (counts.empty()) {
                line(paint(m_terminal, Ink::strong, "  " + label));
            }
            paragraph("  " + label + " · ", counts, Ink::faint, Ink::strong);
            for (const auto& finding : period.findings) {
                paragraph(fmt::format("  {:>5}  ", Format::percent(finding.percent)), Format::findingText(finding),
                          Ink::plain);
            }
            shares("Top skills: ", period.topSkills);
            shares("Top subagents: ", period.topSubagents);
        }
    }

    static std::string countText(std::optional<std::int64_t> count, const char* noun) {
        return count ? Format::count(*count, noun) : std::string();
    }

    void shares(const char* title, const std::vector<UsageInsights::Share>& shares) {
        std::vector<std::string> parts;
        parts.reserve(shares.size());
        for (const auto& share : shares) {
            parts.push_back(share.name + " " + Format::percent(share.percent));
        }
        if (!parts.empty()) {
            paragraph(std::string("         ") + title, Format::joined(parts), Ink::plain);
        }
    }

    const Answer& m_answer;
    const Terminal& m_terminal;
    const StatusTextOptions& m_options;
    bool m_isNarrow = false;  ///< No room for the words that say what the shapes mean.
    std::size_t m_titleCells = kNarrowestTitle;
    std::size_t m_barCells = kWidestBar;
    std::string m_text;
};

}  // namespace

std::string renderStatus(const Answer& answer, const std::optional<RelayState>& relay, const Terminal& terminal,
                         const StatusTextOptions& options) {
    return answer.cards.empty() ? std::string() : StatusPage(answer, terminal, options).render(relay);
}

std::string complaint(const Answer& answer) {
    std::string text;
    const auto add = [&text](std::string_view line, const char* indent = "") {
        if (!line.empty()) {
            text += indent + printable(line) + "\n";
        }
    };
    for (const std::string& problem : Format::storageProblems(answer.unsaved)) {
        add(problem);
    }
    const auto& failure = answer.asking.failure;
    if (!failure) {
        const Format::Placeholder nothing = Format::placeholder(answer);
        add(nothing.title.empty() ? "" : nothing.title + ".");
        add(nothing.text.empty() && answer.stage == Answer::Stage::starting
                ? "vornctl status without --no-probe asks Claude Code."
                : nothing.text);
        return text;
    }
    add(Format::sentence(*failure));
    if (const std::string quoted = Format::quoted(*failure); !quoted.empty()) {
        add(failure->kind == ProbeFailure::Kind::unrecognizedOutput ? "It printed:" : "");
        std::istringstream lines(quoted);
        for (std::string line; std::getline(lines, line);) {
            add(line, "  ");
        }
    }
    add(Format::advice(*failure));
    if (const auto retry = Format::retryText(answer); !retry.isEmpty()) {
        add(retry.text() + "; --probe asks at once.");
    }
    return text;
}

}  // namespace vorn::cli
