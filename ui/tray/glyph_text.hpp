#pragma once

#include <QFont>
#include <QPointF>
#include <QStringView>

class QColor;
class QPainter;

namespace vorn {

/// Short text in the system's font at one size in device pixels. All digits are equally wide, so that a number that
/// counts does not move what stands beside it. Arrows and the stop square are drawn, since many fonts lack them.
class GlyphText {
public:
    struct Face {
        int pixelSize = 13;
        int stretch = 100;  ///< Percent of the natural width.
        QFont::Weight weight = QFont::Normal;
    };
    explicit GlyphText(const Face& face);

    /// Whether it is one of the signs that are drawn: ↑ ↓ → ■.
    static bool isSign(QStringView text);

    [[nodiscard]] double width(QStringView text) const;
    /// The height of a capital letter or digit; whole pixels, at least 1.
    [[nodiscard]] int capHeight() const { return m_capHeight; }
    /// `start`: the left end of the base line.
    void draw(QPainter& painter, QPointF start, QStringView text, const QColor& color) const;

private:
    [[nodiscard]] double advance(QStringView character) const;
    [[nodiscard]] double advanceOfSign() const;
    void drawSign(QPainter& painter, QPointF start, QChar sign, const QColor& color) const;

    QFont m_font;
    double m_signThickness;  ///< In cap heights.
    int m_capHeight;
    double m_digitAdvance = 0;
};

}  // namespace vorn
