#include "cli/terminal.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include <sys/ioctl.h>
#include <unistd.h>

#include "core/support/file.hpp"

namespace vorn::cli {
namespace {

constexpr std::size_t kEighths = 8;
/// A part of a cell, filled from its left edge, in eighths.
constexpr std::array<const char*, kEighths> kPartialBlocks = {" ", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};

double clampShare(double share) {
    return std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0;
}

/// The cell a share points into.
std::size_t cellAt(double share, std::size_t cells) {
    return std::min(cells - 1, static_cast<std::size_t>(clampShare(share) * static_cast<double>(cells)));
}

const char* escapeFor(Ink ink) {
    switch (ink) {
        case Ink::plain:
            return "";
        case Ink::strong:
            return "\x1b[1m";
        case Ink::faint:
            return "\x1b[2m";
        case Ink::accent:
        case Ink::comfortable:
            return "\x1b[34m";
        case Ink::watch:
            return "\x1b[33m";
        case Ink::atRisk:
            return "\x1b[1;33m";
        case Ink::limited:
            break;
    }
    return "\x1b[1;31m";
}

/// The cells or parts of cells that a share fills, to the nearest.
std::size_t reach(double share, std::size_t cells) {
    return static_cast<std::size_t>(std::lround(clampShare(share) * static_cast<double>(cells)));
}

std::string drawPlain(const Bar& bar) {
    std::string drawn(bar.cells, '.');
    std::fill_n(drawn.begin(), reach(bar.projected.value_or(0), bar.cells), '-');
    std::fill_n(drawn.begin(), reach(bar.filled, bar.cells), '#');
    if (bar.tick) {
        drawn[cellAt(*bar.tick, bar.cells)] = '|';
    }
    return drawn;
}

/// Collects pieces, and paints neighbours of one ink in one go.
class InkRun {
public:
    explicit InkRun(const Terminal& terminal) : m_terminal(terminal) {}
    void add(Ink ink, const char* piece) {
        if (ink != m_ink) {
            m_done += paint(m_terminal, m_ink, m_pending);
            m_pending.clear();
            m_ink = ink;
        }
        m_pending += piece;
    }
    std::string take() { return m_done + paint(m_terminal, m_ink, m_pending); }

private:
    const Terminal& m_terminal;
    std::string m_done;
    std::string m_pending;
    Ink m_ink = Ink::plain;
};

}  // namespace

Terminal describeTerminal(int descriptor) {
    Terminal terminal;
    terminal.interactive = ::isatty(descriptor) == 1;
    terminal.colour =
        terminal.interactive && !environmentValue("NO_COLOR") && environmentValue("TERM").value_or("dumb") != "dumb";
    winsize size{};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        terminal.width = size.ws_col;
        terminal.height = size.ws_row;
    }
    return terminal;
}

Ink inkFor(VornStatus status) {
    constexpr std::array kInks{Ink::comfortable, Ink::watch, Ink::atRisk, Ink::limited};
    return kInks.at(static_cast<std::size_t>(status));
}

std::string paint(const Terminal& terminal, Ink ink, std::string_view text) {
    if (!terminal.colour || ink == Ink::plain || text.empty()) {
        return std::string(text);
    }
    return escapeFor(ink) + std::string(text) + "\x1b[0m";
}

const char* shapeFor(VornStatus status) {
    constexpr std::array kShapes{"●", "◆", "▲", "■"};
    return kShapes.at(static_cast<std::size_t>(status));
}

std::string drawBar(const Terminal& terminal, const Bar& bar) {
    if (bar.cells == 0) {
        return {};
    }
    if (!terminal.colour) {
        return drawPlain(bar);
    }
    const std::size_t eighths = reach(bar.filled, bar.cells * kEighths);
    const std::size_t whole = eighths / kEighths;
    const std::size_t tick = bar.tick ? cellAt(*bar.tick, bar.cells) : bar.cells;
    const std::size_t projected = reach(bar.projected.value_or(0), bar.cells);
    InkRun drawn(terminal);
    for (std::size_t cell = 0; cell < bar.cells; ++cell) {
        if (cell == tick) {
            drawn.add(Ink::strong, "│");
        } else if (cell < whole) {
            drawn.add(bar.ink, "█");
        } else if (cell == whole && eighths % kEighths != 0) {
            drawn.add(bar.ink, kPartialBlocks.at(eighths % kEighths));
        } else if (cell < projected) {
            drawn.add(bar.ink, "░");
        } else {
            drawn.add(Ink::faint, "·");
        }
    }
    return drawn.take();
}

}  // namespace vorn::cli
