#include "cli/status_text.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "core/support/unicode/display_width.hpp"
#include "ui/format/format.hpp"

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

std::string capitalised(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    return text;
}

std::string rateText(const WindowAssessment& assessment) {
    if (!assessment.ratePerHour) {
        return "burn rate not known yet";
    }
    return fmt::format("{}, {}", Format::rate(*assessment.ratePerHour, assessment.window.kind),
                       Format::basis(assessment.rateBasis, assessment.window.kind));
}

std::string resetText(const WindowAssessment& assessment, Instant now) {
    const auto& resetsAt = assessment.window.resetsAt;
    if (!resetsAt || !assessment.timeToReset) {
        return assessment.window.usedPercent > 0 ? "reset time not known" : "the next use starts it";
    }
    return fmt::format("resets in {} ({})", Format::duration(*assessment.timeToReset), Format::clock(*resetsAt, now));
}

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            text += (text.empty() ? "" : " · ") + part;
        }
    }
    return text;
}

/// Lays the report out line by line.
class StatusPage {
public:
    StatusPage(const StatusReport& report, const Terminal& terminal, const StatusTextOptions& options)
        : m_report(report), m_terminal(terminal), m_options(options) {
        for (const auto& card : report.cards) {
            m_titleCells = std::max(m_titleCells, displayWidth(card.assessment.window.kind.title()));
        }
        m_titleCells = std::min(m_titleCells, kWidestTitle);
        m_isNarrow = m_titleCells + kComfortableBar + kRowOverhead > terminal.width;
        const std::size_t overhead = m_isNarrow ? kShortRowOverhead : kRowOverhead;
        if (m_isNarrow) {
            m_titleCells = std::clamp(roomBeside(overhead + kNarrowestBar), kNarrowestTitle, m_titleCells);
        }
        m_barCells = std::clamp(roomBeside(overhead + m_titleCells), kNarrowestBar, kWidestBar);
    }

    std::string render() {
        head();
        for (const auto& card : m_report.cards) {
            window(card);
        }
        weekSessions();
        plannedResets();
        insights();
        freshness();
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
    /// Text as wide as the terminal, with something before its first line. Elsewhere it is one line.
    void paragraph(std::string_view lead, std::string_view text, Ink ink, Ink leadInk = Ink::plain) {
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
        if (!m_report.head || !m_report.headline) {
            return;
        }
        const VornStatus status = m_report.headline->status;
        paragraph(fmt::format("{} ", shapeFor(status)), m_report.head->headline, Ink::strong, inkFor(status));
        if (!m_report.head->reason.empty()) {
            paragraph("  ", m_report.head->reason, Ink::plain);
        }
    }

    void window(const StatusReport::Card& card) {
        const WindowAssessment& assessment = card.assessment;
        const Ink ink = inkFor(assessment.status);
        blank();
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
        detail(Format::verdict(assessment, m_report.now), assessment.status >= VornStatus::atRisk ? ink : Ink::plain);
        detail(resetText(assessment, m_report.now));
        if (assessment.timeToReset) {
            detail(joined(
                {Format::pace(assessment.paceDelta().value_or(0)), rateText(assessment), landingText(assessment)}));
        }
        if (assessment.plannedResetAt) {
            detail("Vorn is planning this limit to a reset you added, ahead of the scheduled one.");
        }
        if (m_options.rates) {
            rates(card);
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

    void rates(const StatusReport::Card& card) {
        const auto& sustainable = card.assessment.sustainableRatePerHour;
        for (const RateReading& reading : card.rates) {
            std::string text = fitted(label(reading.horizon), kLabelCells) + "  ";
            if (!reading.ratePerHour) {
                text += "–  too little data";
            } else {
                text += fmt::format("{:>9}", Format::rate(*reading.ratePerHour, card.assessment.window.kind));
                if (sustainable && *sustainable > 0) {
                    text += "  " + Format::times(*reading.ratePerHour / *sustainable);
                }
            }
            row(text);
        }
        if (sustainable) {
            row(fitted("Sustained", kLabelCells) +
                fmt::format("  {:>9}", Format::rate(*sustainable, card.assessment.window.kind)));
        }
    }

    void weekSessions() {
        if (!m_report.ratio) {
            return;
        }
        blank();
        std::string text = fmt::format("A full 5-hour session ≈ {} of the week",
                                       Format::percent(m_report.ratio->weekPercentPerSession()));
        if (m_report.sessionsLeft) {
            text += fmt::format(" · {} left this week", Format::sessionsLeft(*m_report.sessionsLeft));
        }
        paragraph("  ", text, Ink::plain);
    }

    void plannedResets() {
        const ResetPlan& plan = m_report.plan;
        if (plan.planned.empty() && plan.banked == 0) {
            return;
        }
        blank();
        line("  Planned resets" + (plan.banked > 0 ? fmt::format(" ({} banked)", plan.banked) : std::string()));
        for (const PlannedReset& reset : plan.planned) {
            // The weekday alone would not tell this week from next.
            const std::string when = reset.date > m_report.now ? "in " + Format::duration(reset.date - m_report.now)
                                                               : std::string("has passed");
            paragraph(
                "    ",
                joined({Format::clock(reset.date, m_report.now) + " (" + when + ")", label(reset.scope), reset.note}),
                Ink::plain);
        }
    }

    void insights() {
        if (!m_report.insights) {
            return;
        }
        for (const auto& period : m_report.insights->periods) {
            blank();
            const std::string counts =
                joined({countText(period.requests, "request"), countText(period.sessions, "session")});
            const std::string label = elide(period.label, kWidestPeriod);
            paragraph("  " + label + (counts.empty() ? "" : " · "), counts, Ink::faint, Ink::strong);
            for (const auto& finding : period.findings) {
                paragraph(fmt::format("  {:>5}  ", Format::percent(finding.percent)), capitalised(finding.text),
                          Ink::plain);
            }
            shares("Top skills: ", period.topSkills);
            shares("Top subagents: ", period.topSubagents);
        }
    }

    static std::string countText(std::optional<std::int64_t> count, const char* noun) {
        return count ? fmt::format("{} {}{}", *count, noun, *count == 1 ? "" : "s") : std::string();
    }

    void shares(const char* title, const std::vector<UsageInsights::Share>& shares) {
        std::vector<std::string> parts;
        parts.reserve(shares.size());
        for (const auto& share : shares) {
            parts.push_back(share.name + " " + Format::percent(share.percent));
        }
        if (!parts.empty()) {
            paragraph(std::string("         ") + title, joined(parts), Ink::plain);
        }
    }

    void freshness() {
        blank();
        if (m_report.observedAt) {
            const Seconds age = m_report.now - *m_report.observedAt;
            const char* source =
                m_report.source == DataSource::statusLine ? "Claude Code's status line" : "claude /usage";
            paragraph("  ",
                      age < Seconds{60} ? fmt::format("Read just now from {}", source)
                                        : fmt::format("Read {} ago from {}", Format::duration(age), source),
                      Ink::faint);
        }
        if (m_report.relay) {
            paragraph("  ", printable(sentence(*m_report.relay)), Ink::faint);
        }
    }

    const StatusReport& m_report;
    const Terminal& m_terminal;
    const StatusTextOptions& m_options;
    bool m_isNarrow = false;  ///< No room for the words that say what the shapes mean.
    std::size_t m_titleCells = kNarrowestTitle;
    std::size_t m_barCells = kWidestBar;
    std::string m_text;
};

}  // namespace

std::string renderStatus(const StatusReport& report, const Terminal& terminal, const StatusTextOptions& options) {
    return StatusPage(report, terminal, options).render();
}

}  // namespace vorn::cli
