#include "ui/tray/glyph_preview.hpp"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

/// Between cells, in cells: about what panels leave.
constexpr double kGap = 0.2;

QImage inPoints(QImage image, double pixelRatio) {
    image.setDevicePixelRatio(pixelRatio);
    return image;
}

}  // namespace

GlyphPreview::GlyphPreview(QQuickItem* parent) : PaintedItem(parent) {
    connect(this, &GlyphPreview::changed, this, &GlyphPreview::fitSize);
}

void GlyphPreview::setGlyph(LiveGlyph* glyph) {
    if (m_glyph == glyph) {
        return;
    }
    if (m_glyph) {
        m_glyph->disconnect(this);
    }
    m_glyph = glyph;
    if (m_glyph) {
        connect(m_glyph, &LiveGlyph::changed, this, &GlyphPreview::changed);
    }
    emit changed();
}

bool GlyphPreview::isStrip() const {
    return m_content == Items && !m_glyph->hasCells();
}

const std::vector<MenuBarPart>& GlyphPreview::parts() const {
    switch (m_content) {
        case SingleRing:
            return m_glyph->singleRing();
        case Sample:
            return m_glyph->sample();
        case Items:
            break;
    }
    return m_glyph->items();
}

MenuBarGlyph::Look GlyphPreview::look() const {
    MenuBarGlyph::Look look = m_glyph->look();
    if (m_content == Sample) {
        const auto last = static_cast<int>(kAllGlyphStyles.size()) - 1;
        look.style = kAllGlyphStyles.at(static_cast<std::size_t>(std::clamp(m_style, 0, last)));
        look.tint = false;
        look.palette.foreground = color();
    }
    return look;
}

void GlyphPreview::fitSize() {
    if (!m_glyph) {
        return;
    }
    const auto count = static_cast<double>(parts().size());
    double width = m_side * (count + kGap * (count - 1));
    if (isStrip()) {
        const QImage image = MenuBarGlyph::image(parts(), look(), static_cast<int>(std::lround(m_side)));
        width = image.width();
    }
    setImplicitSize(std::ceil(width), m_side);
}

void GlyphPreview::paint(QPainter* painter) {
    if (!m_glyph) {
        return;
    }
    // Device pixels a point, however the painter comes by them.
    const double ratio = painter->deviceTransform().m11();
    const int side = static_cast<int>(std::lround(m_side * ratio));
    if (isStrip()) {
        painter->drawImage(QPointF(), inPoints(MenuBarGlyph::image(parts(), look(), side), ratio));
        return;
    }
    double x = 0;
    for (const MenuBarPart& part : parts()) {
        // On whole device pixels, as in the tray.
        const double left = std::round(x * ratio) / ratio;
        painter->drawImage(QPointF(left, 0), inPoints(MenuBarGlyph::cell(part, look(), side), ratio));
        x += m_side * (1 + kGap);
    }
}

}  // namespace vorn
