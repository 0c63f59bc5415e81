#pragma once

#include <QPointer>

#include <QtQml/qqmlregistration.h>

#include "ui/views/live_glyph.hpp"
#include "ui/views/painted_item.hpp"

namespace vorn {

/// The tray's picture in a window. Its own size is that of the picture, in cells of `side` points.
class GlyphPreview : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vorn::LiveGlyph* glyph READ glyph WRITE setGlyph NOTIFY changed FINAL)
    Q_PROPERTY(Content content READ content WRITE setContent NOTIFY changed FINAL)
    Q_PROPERTY(int style READ style WRITE setStyle NOTIFY changed FINAL)
    Q_PROPERTY(double side READ side WRITE setSide NOTIFY changed FINAL)

public:
    enum Content : int {
        Items,       ///< all that is on, as one cell each or as one strip
        SingleRing,  ///< one ring alone
        Sample,      ///< a ring in `style` and `color`, whatever is chosen
    };
    Q_ENUM(Content)

    using PaintedItem::PaintedItem;

    [[nodiscard]] LiveGlyph* glyph() const { return m_glyph; }
    [[nodiscard]] Content content() const { return m_content; }
    /// In the order of `kAllGlyphStyles`.
    [[nodiscard]] int style() const { return m_style; }
    [[nodiscard]] double side() const { return m_side; }
    void setGlyph(LiveGlyph* glyph);
    void setContent(Content content) { set(m_content, content); }
    void setStyle(int style) { set(m_style, style); }
    void setSide(double points) { set(m_side, points); }

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    template <typename T>
    void set(T& member, T value) {
        if (change(member, value)) {
            refresh();
            emit changed();
        }
    }
    void refresh();
    [[nodiscard]] const std::vector<MenuBarPart>& parts() const;
    [[nodiscard]] MenuBarGlyph::Look look() const;
    [[nodiscard]] bool isStrip() const;

    QPointer<LiveGlyph> m_glyph;
    Content m_content = Items;
    int m_style = 0;
    double m_side = 22;
};

}  // namespace vorn
