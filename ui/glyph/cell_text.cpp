#include "ui/glyph/cell_text.hpp"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "ui/glyph/glyph_text.hpp"

namespace vorn::CellText {

namespace {

constexpr double kUnitShare = 0.62;
/// Percent of the natural width; narrower than that looks squeezed.
constexpr std::array kStretches{100, 95, 90};
/// A single line never gets larger than this share of the side: one digit must not shout.
constexpr double kLargestShare = 0.64;
constexpr int kWholeNumberDigits = 2;

/// One size tried for all lines.
struct Setting {
    GlyphText text;
    GlyphText unit;

    Setting(int pixelSize, int stretch)
        : text(pixelSize, stretch), unit(static_cast<int>(std::lround(pixelSize * kUnitShare)), stretch) {}

    [[nodiscard]] double width(const Line& line) const { return text.width(line.text) + unit.width(line.unit); }
    [[nodiscard]] int height(const Line& line) const {
        return line.text.isEmpty() ? unit.capHeight() : text.capHeight();
    }
};

struct Room {
    double width;
    int height;
    int gap;  ///< Between two lines.
};

int heightOf(const std::vector<Line>& lines, const Setting& setting, const Room& room) {
    return std::accumulate(lines.begin(), lines.end(), -room.gap,
                           [&](int sum, const Line& line) { return sum + room.gap + setting.height(line); });
}

bool fits(const std::vector<Line>& lines, const Setting& setting, const Room& room) {
    return heightOf(lines, setting, room) <= room.height &&
           std::all_of(lines.begin(), lines.end(), [&](const Line& line) { return setting.width(line) <= room.width; });
}

Setting largest(const std::vector<Line>& lines, int side, const Room& room) {
    for (int size = static_cast<int>(side * kLargestShare); size > 1; --size) {
        for (const int stretch : kStretches) {
            Setting setting(size, stretch);
            if (fits(lines, setting, room)) {
                return setting;
            }
        }
    }
    return {1, kStretches.back()};
}

}  // namespace

std::vector<Line> lines(std::string_view text) {
    const QString all = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    if (const qsizetype space = all.indexOf(u' '); space > 0) {  // "1h 30m"
        return {{.text = all.left(space)}, {.text = all.mid(space + 1)}};
    }
    if (all.endsWith(u'%')) {
        const QString number = all.chopped(1);
        if (number.size() > kWholeNumberDigits) {
            return {{.text = number}, {.unit = all.right(1)}};
        }
        return {{.text = number, .unit = all.right(1)}};
    }
    if (all.size() > 1 && (all.front() == u'↑' || all.front() == u'↓')) {  // "↓0.6×"
        return {{.text = all.left(1)}, {.text = all.mid(1)}};
    }
    if (const qsizetype times = all.indexOf(u'×'); times > 0 && times + 1 < all.size()) {  // "3.4×5h"
        return {{.text = all.left(times)}, {.text = all.mid(times)}};
    }
    return {{.text = all}};
}

void paint(QPainter& painter, const std::vector<Line>& lines, int side, const QColor& color) {
    const int margin = std::max(1, static_cast<int>(std::lround(side / 22.0)));
    const Room room{.width = side - 2.0 * margin,
                    .height = side - 2 * margin,
                    .gap = std::max(1, static_cast<int>(std::lround(side / 11.0)))};
    const Setting setting = largest(lines, side, room);

    int baseLine = (side - heightOf(lines, setting, room)) / 2;
    for (const Line& line : lines) {
        baseLine += setting.height(line);
        QPointF start((side - setting.width(line)) / 2, baseLine);
        setting.text.draw(painter, start, line.text, color);
        start.rx() += setting.text.width(line.text);
        setting.unit.draw(painter, start, line.unit, color);
        baseLine += room.gap;
    }
}

}  // namespace vorn::CellText
