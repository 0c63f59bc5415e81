#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/analysis/vorn_status.hpp"

namespace vorn::cli {

/// What the place that output goes to can show.
struct Terminal {
    bool interactive = false;  ///< A terminal, not a pipe or a file.
    bool colour = false;       ///< Escape sequences for colour: interactive, no `NO_COLOR`, `TERM` not "dumb".
    std::size_t width = 80;    ///< In cells; 80 where it is unknown.
    std::size_t height = 24;   ///< In lines; 24 where it is unknown.
};

Terminal describeTerminal(int descriptor);

/// What a piece of text is, for terminals with colour; the terminal's own palette decides how it looks.
enum class Ink : std::uint8_t { plain, strong, faint, accent, comfortable, watch, atRisk, limited };
Ink inkFor(VornStatus status);

/// `text` in that ink, unchanged where there is no colour.
std::string paint(const Terminal& terminal, Ink ink, std::string_view text);

/// A shape besides the colour, so that a status reads without it: "●", "◆", "▲", "■".
const char* shapeFor(VornStatus status);

struct Bar {
    double filled = 0;                ///< 0..1, clamped.
    std::optional<double> projected;  ///< 0..1, clamped; drawn paler behind the filled part.
    std::optional<double> tick;       ///< 0..1, clamped: even pace.
    std::size_t cells = 30;
    Ink ink = Ink::accent;
};
/// Block elements to an eighth of a cell with colour, "#", "-" and "|" without.
std::string drawBar(const Terminal& terminal, const Bar& bar);

}  // namespace vorn::cli
