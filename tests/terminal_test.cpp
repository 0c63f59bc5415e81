#include "cli/terminal.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "core/support/unicode/display_width.hpp"

namespace vorn::cli {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(DrawBar, ShowsUsedProjectedAndEvenPace) {
    const std::tuple<const char*, Bar, const char*, const char*> cases[] = {
        {"empty", {.filled = 0, .cells = 4}, "....", "····"},
        {"half a cell", {.filled = 0.125, .cells = 4}, "#...", "▌···"},
        {"just below half a cell", {.filled = 0.124, .cells = 4}, "....", "▌···"},
        {"rounds to nothing", {.filled = 0.015, .cells = 4}, "....", "····"},
        {"rounds to a whole cell", {.filled = 0.249, .cells = 4}, "#...", "█···"},
        {"overdrawn", {.filled = 1.7, .projected = 3, .tick = 9, .cells = 4}, "###|", "███│"},
        {"below nothing", {.filled = -1, .projected = -2, .tick = -3, .cells = 4}, "|...", "│···"},
        {"the tick covers", {.filled = 0.5, .projected = 1, .tick = 0.5, .cells = 4}, "##|-", "██│░"},
        {"no number", {.filled = kNan, .projected = kNan, .tick = kNan, .cells = 4}, "|...", "│···"},
        {"without bounds", {.filled = kInfinity, .projected = -kInfinity, .cells = 4}, "....", "····"},
        {"no cell", {.filled = 1, .tick = 1, .cells = 0}, "", ""},
    };
    for (const auto& [name, bar, plain, blocks] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(drawBar({}, bar), plain);
        std::string drawn = drawBar({.interactive = true, .colour = true}, bar);
        for (std::size_t at = drawn.find('\x1b'); at != std::string::npos; at = drawn.find('\x1b')) {
            drawn.erase(at, drawn.find('m', at) + 1 - at);
        }
        EXPECT_EQ(drawn, blocks);
    }
}

TEST(Paint, ColoursOnlyWhatATerminalCanShow) {
    EXPECT_EQ(paint({.colour = true}, Ink::limited, "x"), "\x1b[1;31mx\x1b[0m");
    EXPECT_EQ(paint({.colour = true}, Ink::plain, "x"), "x");
    EXPECT_EQ(paint({.colour = true}, Ink::strong, ""), "");
    EXPECT_EQ(paint({.interactive = true}, Ink::limited, "x"), "x");
}

}  // namespace
}  // namespace vorn::cli
