#include "ui/tray/cell_text.hpp"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

#include "ui/tray/glyph_text.hpp"

namespace vorn::CellText {

namespace {

/// Of the number's size.
constexpr double kUnitShare = 0.62;
/// Percent of the natural width; narrower than that looks squeezed.
constexpr std::array kStretches{100, 95, 90};
/// The largest size as a share of the side, for one line and for each of two: cells beside each other should look as
/// if they belonged together, even when one has a single digit.
constexpr double kLargestAlone = 0.6;
constexpr double kLargestOfTwo = 0.5;
/// A sign alone: nothing else could be misread for its size.
constexpr double kLargestSign = 0.8;
/// A unit that has a line for itself.
constexpr double kLargestUnitLine = 0.4;
constexpr int kDigitsBesideUnit = 2;
constexpr QStringView kUnits = u"%mhd";
/// Smaller cells cannot afford a margin.
constexpr int kMarginFrom = 20;

/// A line at one size.
class Setting {
public:
    Setting(const Line& line, int pixelSize, int stretch)
        : m_line(&line),
          m_text({.pixelSize = pixelSize, .stretch = stretch, .weight = QFont::DemiBold}),
          m_unit({.pixelSize = unitSize(line, pixelSize), .stretch = stretch, .weight = QFont::DemiBold}) {}

    [[nodiscard]] double width() const { return m_text.width(m_line->text) + m_unit.width(m_line->unit); }
    [[nodiscard]] int height() const { return m_line->text.isEmpty() ? m_unit.capHeight() : m_text.capHeight(); }

    void draw(QPainter& painter, QPointF start, const QColor& color) const {
        m_text.draw(painter, start, m_line->text, color);
        start.rx() += m_text.width(m_line->text);
        m_unit.draw(painter, start, m_line->unit, color);
    }

private:
    static int unitSize(const Line& line, int pixelSize) {
        return line.text.isEmpty() ? pixelSize : static_cast<int>(std::lround(pixelSize * kUnitShare));
    }

    const Line* m_line;
    GlyphText m_text;
    GlyphText m_unit;
};

Setting largest(const Line& line, int from, double width, int height) {
    for (int size = from; size > 1;) {
        const Setting narrowest(line, size, kStretches.back());
        if (narrowest.height() > height || narrowest.width() > width) {
            // Text is as wide as it is high, nearly: no need to try every size on the way.
            const double share = std::min(width / narrowest.width(), 1.0 * height / narrowest.height());
            size = std::min(size - 1, static_cast<int>(std::ceil(size * share)));
            continue;
        }
        for (const int stretch : kStretches) {
            Setting setting(line, size, stretch);
            if (setting.width() <= width) {
                return setting;
            }
        }
        return narrowest;
    }
    return {line, 1, kStretches.back()};
}

double largestShare(const Line& line, int lineCount) {
    if (line.text.isEmpty()) {
        return kLargestUnitLine;
    }
    if (lineCount > 1) {
        return kLargestOfTwo;
    }
    return GlyphText::isSign(line.text) ? kLargestSign : kLargestAlone;
}

int pixels(double share, int side) {
    return static_cast<int>(std::lround(share * side));
}

}  // namespace

std::vector<Line> lines(std::string_view text) {
    const QString all = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    if (const qsizetype space = all.indexOf(u' '); space > 0) {  // "1h 30m"
        return {{.text = all.left(space)}, {.text = all.mid(space + 1)}};
    }
    if (const qsizetype times = all.indexOf(u'×'); times > 0 && times + 1 < all.size()) {  // "3.4×5h"
        return {{.text = all.left(times)}, {.text = all.mid(times)}};
    }
    if (all.endsWith(u'%') && all.size() <= kDigitsBesideUnit + 1) {
        return {{.text = all.chopped(1), .unit = all.right(1)}};
    }
    if (all.size() > kDigitsBesideUnit && kUnits.contains(all.back())) {  // "100%", "45m", "<1m"
        return {{.text = all.chopped(1)}, {.unit = all.right(1)}};
    }
    if (all.size() > 1 && (all.front() == u'↑' || all.front() == u'↓')) {  // "↓0.6×"
        return {{.text = all.left(1)}, {.text = all.mid(1)}};
    }
    return {{.text = all}};
}

void paint(QPainter& painter, const std::vector<Line>& lines, int side, const QColor& color) {
    const int margin = side < kMarginFrom ? 0 : std::max(1, pixels(1 / 22.0, side));
    const int gap = std::max(1, pixels(1 / 11.0, side));
    const int room = side - 2 * margin;
    const int count = std::max(1, static_cast<int>(lines.size()));
    const int heightEach = (room - (count - 1) * gap) / count;

    std::vector<Setting> settings;
    int height = -gap;
    for (const Line& line : lines) {
        settings.push_back(largest(line, pixels(largestShare(line, count), side), room, heightEach));
        height += gap + settings.back().height();
    }
    int baseLine = (side - height) / 2;
    for (const Setting& setting : settings) {
        baseLine += setting.height();
        setting.draw(painter, QPointF((side - setting.width()) / 2, baseLine), color);
        baseLine += gap;
    }
}

}  // namespace vorn::CellText
