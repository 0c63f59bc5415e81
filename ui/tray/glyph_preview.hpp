#pragma once

#include <QPointer>

#include <QtQml/qqmlregistration.h>

#include "ui/controls/painted_item.hpp"
#include "ui/tray/live_glyph.hpp"

namespace vorn {

/// The tray's picture in a window. Its own size is that of the picture, in cells of `side` points.
class GlyphPreview : public vorn::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vorn::LiveGlyph* glyph READ glyph WRITE setGlyph NOTIFY changed FINAL)
    Q_PROPERTY(Content content MEMBER m_content NOTIFY changed FINAL)
    Q_PROPERTY(int style MEMBER m_style NOTIFY changed FINAL)
    Q_PROPERTY(double side MEMBER m_side NOTIFY changed FINAL)

public:
    enum Content : int {
        Items,       ///< all that is on, as one cell each or as one strip
        SingleRing,  ///< one ring alone
        Sample,      ///< a ring in `style` and `color`, whatever is chosen
    };
    Q_ENUM(Content)

    explicit GlyphPreview(QQuickItem* parent = nullptr);

    [[nodiscard]] LiveGlyph* glyph() const { return m_glyph; }
    void setGlyph(LiveGlyph* glyph);

    void paint(QPainter* painter) override;

private:
    void fitSize();
    [[nodiscard]] const std::vector<MenuBarPart>& parts() const;
    [[nodiscard]] MenuBarGlyph::Look look() const;
    [[nodiscard]] bool isStrip() const;

    QPointer<LiveGlyph> m_glyph;
    Content m_content = Items;
    int m_style = 0;  ///< In the order of `kAllGlyphStyles`.
    double m_side = 22;
};

}  // namespace vorn
