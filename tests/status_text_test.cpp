#include "cli/status/status_text.hpp"

#include <limits>
#include <sstream>

#include <gmock/gmock.h>

#include "core/support/unicode/display_width.hpp"
#include "demo/demo_answer.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/repeated.hpp"

namespace vorn::cli {
namespace {

using namespace std::chrono_literals;
using test::kNow;
using testing::HasSubstr;
using testing::Not;

const std::string kWide = "项目管理系统项目管理系统项目管理系统";
const std::string kHostile = "\x1b[31mevil\u202E\n\x07" + std::string(300, 'x');

/// The planned-reset demonstration with names from outside that nobody would choose.
Answer hostileAnswer() {
    demo::Demo demo = demo::makeDemo(demo::Scenario::plannedReset, kNow);
    for (const std::string& model : {kWide, kHostile, std::string("\xff"), test::repeated(40, "e\u0301")}) {
        demo.windows.push_back(test::reading(WindowKind::weekModel(model), 12, 80h));
    }
    demo.plan.planned[0].note = kHostile + " · " + kWide;
    auto& period = demo.insights.periods[0];
    period.label = kHostile;
    period.findings.push_back({100, kWide + " " + kHostile});
    period.topSkills.push_back({kHostile, 5});
    return demo::answer(demo, kNow);
}

std::string textOf(std::vector<UsageWindow> windows, bool rates = false) {
    return renderStatus(VornEngine::formAnswer({.windows = std::move(windows)}, kNow), {}, {}, {.rates = rates});
}

std::string withoutInk(std::string text) {
    for (std::size_t at = text.find('\x1b'); at != std::string::npos; at = text.find('\x1b')) {
        text.erase(at, text.find('m', at) + 1 - at);
    }
    return text;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(RenderStatus, StaysAlignedWithinEveryTerminal) {
    const Answer answer = hostileAnswer();
    for (const std::size_t width : {36U, 40U, 50U, 80U, 200U}) {
        SCOPED_TRACE(width);
        const std::string drawn =
            renderStatus(answer, {}, {.interactive = true, .colour = true, .width = width}, {.rates = true});
        EXPECT_THAT(drawn, HasSubstr("█"));
        EXPECT_THAT(drawn, Not(HasSubstr("\x1b[31mevil")));
        const std::string plain =
            renderStatus(answer, {}, {.interactive = true, .colour = false, .width = width}, {.rates = true});
        EXPECT_THAT(plain, Not(HasSubstr("\x1b")));
        EXPECT_EQ(linesOf(withoutInk(drawn)).size(), linesOf(plain).size());
        std::vector<std::size_t> percentColumns;
        for (const std::string& line : linesOf(withoutInk(drawn))) {
            EXPECT_LE(displayWidth(line), width) << line;
            EXPECT_EQ(line, printable(line));
            if (line.starts_with("  ") &&
                (line.find("██") != std::string::npos || line.find("··") != std::string::npos)) {
                percentColumns.push_back(displayWidth(line.substr(0, line.find('%'))));
            }
        }
        EXPECT_EQ(percentColumns.size(), answer.cards.size());
        EXPECT_THAT(percentColumns, testing::Each(percentColumns.front()));
    }
    // Elsewhere a line is a line, whatever its length.
    EXPECT_THAT(renderStatus(answer, {}, {}), HasSubstr("evil " + std::string(300, 'x')));
}

TEST(RenderStatus, NeverShowsWhatIsNoNumber) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const double hostile[] = {kNan, 1e300, -1e300, std::numeric_limits<double>::infinity(), -0.0, 250};
    for (const double used : hostile) {
        for (const Seconds resetsIn : std::initializer_list<Seconds>{-1e9s, 0s, 1ns, 3h, 1e12s}) {
            const std::string text = textOf({test::reading(WindowKind::session(), used, resetsIn),
                                             test::reading(WindowKind::week(), used, resetsIn)},
                                            true);
            for (const char* unwanted : {"nan", "inf", "-0%", "e+"}) {
                EXPECT_THAT(text, Not(HasSubstr(unwanted))) << used << ' ' << resetsIn.count();
            }
        }
    }
}

TEST(RenderStatus, SaysWhatIsKnownAndNothingElse) {
    EXPECT_EQ(textOf({}), "");
    auto window = test::reading(WindowKind::session(), 0, 3h);
    window.resetsAt.reset();
    EXPECT_THAT(textOf({window}), testing::AllOf(HasSubstr("Not started"), HasSubstr("Begins with the next message"),
                                                 Not(HasSubstr("not known"))));
    window.usedPercent = 40;
    window.observedAt = kNow - 95min;
    EXPECT_THAT(textOf({window}),
                testing::AllOf(HasSubstr("Reset time not known"), HasSubstr("Read 1h 35m ago from claude /usage")));
    window.observedAt = kNow + 1h;  // the clock was set back
    window.source = DataSource::statusLine;
    EXPECT_THAT(textOf({window}), HasSubstr("Read just now from the status line"));
}

TEST(Complaint, QuotesTheClientAndSaysWhatToDo) {
    using Kind = ProbeFailure::Kind;
    const auto complaintOf = [](Evidence evidence) {
        return complaint(VornEngine::formAnswer(evidence, kNow));
    };
    EXPECT_EQ(complaintOf({.windows = {test::reading(WindowKind::session(), 5, 3h)}}), "");
    EXPECT_EQ(complaintOf({}), "No reading yet.\nvornctl status without --no-probe asks Claude Code.\n");
    EXPECT_EQ(complaintOf({.asking = {.hasAnswered = true}}),
              "Connected, no limits yet.\nClaude Code reports them after the first reply of a session.\n");
    EXPECT_EQ(complaintOf({.asking = {.failure = ProbeFailure{Kind::unrecognizedOutput, "\x1b[2Jone\n\ttwo"}},
                           .unsaved = {.history = true, .plan = "No space left on device"}}),
              "The history cannot be saved.\nThe reset plan cannot be saved: No space left on device\n"
              "Vorn couldn't read the /usage output. Claude Code may have changed its format.\n"
              "It printed:\n  [2Jone\n   two\n");
}

}  // namespace
}  // namespace vorn::cli
