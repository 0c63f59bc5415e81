#pragma once

#include <QString>
#include <string_view>
#include <vector>

class QColor;
class QPainter;

/// Text in a square that is hardly larger than two letters.
namespace vorn::CellText {

/// One line: the number, and behind it its unit, which may be smaller.
struct Line {
    QString text{};
    QString unit{};
    bool operator==(const Line&) const = default;
};

/// How one of the tray's texts is set: one line, or two where it has two parts.
std::vector<Line> lines(std::string_view text);

/// Paints the lines as large as a square of `side` device pixels at the painter's origin allows.
void paint(QPainter& painter, const std::vector<Line>& lines, int side, const QColor& color);

}  // namespace vorn::CellText
