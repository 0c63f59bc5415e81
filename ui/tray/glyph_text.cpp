#include "ui/tray/glyph_text.hpp"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>

namespace vorn {

namespace {

constexpr QStringView kDrawnSigns = u"↑↓→■";
/// Room on both sides of a drawn sign, in cap heights.
constexpr double kSignBearing = 0.12;

QFont fontOf(const GlyphText::Face& face) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(std::max(1, face.pixelSize));
    font.setStretch(face.stretch);
    font.setItalic(false);
    font.setWeight(face.weight);
    // Horizontal edges on whole pixels, while the letters keep their widths.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

bool isDigit(QStringView character) {
    return character.size() == 1 && character.front() >= u'0' && character.front() <= u'9';
}

/// Calls `use(character, isLast)` for each code point.
template <typename Use>
void forEachCharacter(QStringView text, Use&& use) {
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        use(text.mid(i, length));
        i += length;
    }
}

}  // namespace

bool GlyphText::isSign(QStringView text) {
    return text.size() == 1 && kDrawnSigns.contains(text.front());
}

GlyphText::GlyphText(const Face& face)
    : m_font(fontOf(face)), m_signThickness(face.weight > QFont::Medium ? 0.2 : 0.13) {
    const QFontMetricsF metrics(m_font);
    m_capHeight = std::max(1, static_cast<int>(std::lround(metrics.tightBoundingRect(QStringLiteral("0")).height())));
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        m_digitAdvance = std::max(m_digitAdvance, metrics.horizontalAdvance(QChar(digit)));
    }
}

double GlyphText::advanceOfSign() const {
    return m_capHeight * (1 + 2 * kSignBearing);
}

double GlyphText::advance(QStringView character) const {
    if (isDigit(character)) {
        return m_digitAdvance;
    }
    if (isSign(character)) {
        return advanceOfSign();
    }
    return QFontMetricsF(m_font).horizontalAdvance(character.toString());
}

double GlyphText::width(QStringView text) const {
    double width = 0;
    forEachCharacter(text, [&](QStringView character) { width += advance(character); });
    return width;
}

void GlyphText::draw(QPainter& painter, QPointF start, QStringView text, const QColor& color) const {
    const QFontMetricsF metrics(m_font);
    painter.save();
    painter.setFont(m_font);
    painter.setPen(color);
    forEachCharacter(text, [&](QStringView character) {
        const double room = advance(character);
        if (isSign(character)) {
            drawSign(painter, start, character.front(), color);
        } else {
            const QString one = character.toString();
            painter.drawText(start + QPointF((room - metrics.horizontalAdvance(one)) / 2, 0), one);
        }
        start.rx() += room;
    });
    painter.restore();
}

void GlyphText::drawSign(QPainter& painter, QPointF start, QChar sign, const QColor& color) const {
    // As thick as the stems beside it; of a height that puts both edges of the shaft on whole pixels.
    const int thickness = std::max(1, static_cast<int>(std::ceil(m_capHeight * m_signThickness - 0.3)));
    const int side = (m_capHeight - thickness) % 2 == 0 ? m_capHeight : m_capHeight - 1;
    const QRectF box(std::round(start.x() + (advanceOfSign() - side) / 2), start.y() - side, side, side);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (sign == u'■') {
        const double inset = std::round(side * 0.08);
        painter.fillRect(box.adjusted(inset, inset, -inset, -inset), color);
        painter.restore();
        return;
    }
    const double half = side / 2.0;
    const double reach = half - thickness * 0.35;
    // Points up around its middle; turned for the other two.
    painter.translate(box.center());
    painter.rotate(sign == u'↓' ? 180 : sign == u'→' ? 90 : 0);
    QPainterPath head(QPointF(-reach, -half + thickness * 0.7 + reach));
    head.lineTo(0, -half + thickness * 0.7);
    head.lineTo(reach, -half + thickness * 0.7 + reach);
    painter.fillRect(QRectF(-thickness / 2.0, -half + thickness, thickness, side - thickness), color);
    painter.strokePath(head, QPen(color, thickness, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.restore();
}

}  // namespace vorn
