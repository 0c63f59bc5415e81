#include "core/support/unicode/display_width.hpp"

#include <gmock/gmock.h>

namespace vorn {
namespace {

using testing::ElementsAre;

TEST(DisplayWidth, CountsTerminalCells) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"", 0},         {"Sonnet", 6}, {"Zürich", 6},   {"e\u0301", 1},  {"项目", 4},
        {"ｆｕｌｌ", 8}, {"🚀", 2},      {"a\u200Bb", 2}, {"█░│·—…≈×", 8}, {"\xff\xfe", 2},
    };
    for (const auto& [text, cells] : cases) {
        EXPECT_EQ(displayWidth(text), cells) << text;
    }
}

TEST(DisplayWidth, FitsTextIntoCells) {
    const std::tuple<const char*, std::size_t, const char*, const char*> cases[] = {
        {"Sonnet", 8, "Sonnet", "Sonnet  "},
        {"Sonnet", 4, "Son…", "Son…"},
        {"Sonnet", 0, "", ""},
        {"", 3, "", "   "},
        {"项目管理", 7, "项目管…", "项目管…"},
        {"项目管理", 6, "项目…", "项目… "},  // half a wide character is none
        {"e\u0301e\u0301e\u0301", 2, "e\u0301…", "e\u0301…"},
        {"a\x1b[2Jb\x07", 9, "a[2Jb", "a[2Jb    "},
    };
    for (const auto& [text, cells, elided, filled] : cases) {
        EXPECT_EQ(elide(text, cells), elided);
        EXPECT_EQ(fitted(text, cells), filled);
    }
}

TEST(Printable, KeepsTextAndNothingThatSteers) {
    EXPECT_EQ(printable("one\ttwo\nthree\u2028four\r\n"), "one two three four ");
    EXPECT_EQ(printable("\x1b]0;title\x07 \u009b31m\x7f"), "]0;title 31m");
    EXPECT_EQ(printable("a\u202Egnp.exe\u2066b\u200Fc"), "agnp.exebc");
    EXPECT_EQ(printable("\xc3(\u0000 \u200D👩"), "\uFFFD(");
    EXPECT_EQ(printable("שלום 项目 👩\u200D🚀"), "שלום 项目 👩\u200D🚀");
}

TEST(Wrapped, BreaksBetweenPartsThenWordsThenWithin) {
    EXPECT_THAT(wrapped("", 10), ElementsAre(""));
    EXPECT_THAT(wrapped("one · two · three", 17), ElementsAre("one · two · three"));
    EXPECT_THAT(wrapped("one · two · three", 16), ElementsAre("one · two", "three"));
    EXPECT_THAT(wrapped("one · the second part · x", 10), ElementsAre("one", "the second", "part · x"));
    EXPECT_THAT(wrapped("a verylongword b", 4), ElementsAre("a", "very", "long", "word", "b"));
    EXPECT_THAT(wrapped("项目管理", 5), ElementsAre("项目", "管理"));
    EXPECT_THAT(wrapped("项目", 1), ElementsAre("项", "目"));  // wider than a line: still an end
    EXPECT_THAT(wrapped("a\nb\x1b[m", 80), ElementsAre("a b[m"));
    EXPECT_EQ(wrapped(std::string(500'000, 'x'), 10).size(), 50'000U) << "and soon";
}

}  // namespace
}  // namespace vorn
