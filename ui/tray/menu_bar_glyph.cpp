#include "ui/tray/menu_bar_glyph.hpp"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/wording/format.hpp"
#include "ui/tray/cell_text.hpp"
#include "ui/tray/glyph_text.hpp"

namespace vorn::MenuBarGlyph {

namespace {

RingPart tightest(const Answer& answer) {
    const WindowAssessment* const assessment = answer.steerAssessment();
    if (assessment == nullptr) {
        return {.kind = answer.steer ? answer.steer->kind : WindowKind::session(), .steer = answer.steer};
    }
    return {.kind = assessment->window.kind, .assessment = *assessment, .steer = answer.steer};
}

RingPart ringOf(const WindowKind& kind, const WindowAssessment* assessment) {
    if (assessment == nullptr) {
        return {.kind = kind};
    }
    return {.kind = kind, .assessment = *assessment, .steer = assessment->steer()};
}

std::optional<std::string> percentOf(const WindowAssessment* assessment) {
    if (assessment == nullptr) {
        return std::nullopt;
    }
    return Format::percent(assessment->window.usedPercent);
}

std::optional<std::string> untilReset(const WindowAssessment* assessment, Instant now) {
    if (assessment == nullptr || !assessment->window.resetsAt) {
        return std::nullopt;
    }
    return Format::duration(*assessment->window.resetsAt - now);
}

std::optional<std::string> sessionsLeft(const Answer& answer) {
    return answer.sessionsLeft ? std::optional(Format::sessionsLeft(*answer.sessionsLeft)) : std::nullopt;
}

std::optional<std::string> factorOf(const Answer& answer) {
    return answer.steer ? std::optional(Format::factor(*answer.steer)) : std::nullopt;
}

std::optional<MenuBarPart> partOf(MenuBarItem item, const Answer& answer) {
    const auto text = [item](std::optional<std::string> words) {
        return words ? std::optional<MenuBarPart>(TextPart{.item = item, .text = std::move(*words)}) : std::nullopt;
    };
    switch (item) {
        case MenuBarItem::tightestRing:
            return tightest(answer);
        case MenuBarItem::sessionRing:
            return ringOf(WindowKind::session(), answer.session());
        case MenuBarItem::sessionPercent:
            return text(percentOf(answer.session()));
        case MenuBarItem::sessionReset:
            return text(untilReset(answer.session(), answer.now));
        case MenuBarItem::weekRing:
            return ringOf(WindowKind::week(), answer.week());
        case MenuBarItem::weekPercent:
            return text(percentOf(answer.week()));
        case MenuBarItem::weekReset:
            return text(untilReset(answer.week(), answer.now));
        case MenuBarItem::paceFactor:
            return text(factorOf(answer));
        case MenuBarItem::sessionsLeft:
            return text(sessionsLeft(answer));
    }
    return std::nullopt;
}

bool isTinted(const RingPart& part) {
    return part.assessment && part.assessment->status >= VornStatus::atRisk;
}

QColor inkOf(const RingPart& part, const Look& look) {
    if (!look.tint || !isTinted(part)) {
        return look.palette.foreground;
    }
    return part.assessment->status == VornStatus::limited ? look.palette.limited : look.palette.atRisk;
}

QImage transparent(int width, int height) {
    QImage image(std::max(1, width), std::max(1, height), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QString textOf(const TextPart& part) {
    return QString::fromStdString(part.text);
}

/// Where everything is in a strip, in device pixels. A menu bar is 22 points high.
class Strip {
public:
    Strip(std::span<const MenuBarPart> parts, int height)
        : m_parts(parts), m_height(height), m_ringSide(points(16)), m_text({.pixelSize = points(13)}) {}

    [[nodiscard]] int width() const {
        int width = 0;
        for (std::size_t i = 0; i < m_parts.size(); ++i) {
            width += (i == 0 ? 0 : gapBefore(i)) + widthOf(m_parts[i]);
        }
        return width;
    }

    void paint(QPainter& painter, const Look& look) const {
        int x = 0;
        for (std::size_t i = 0; i < m_parts.size(); ++i) {
            x += i == 0 ? 0 : gapBefore(i);
            if (const auto* part = std::get_if<RingPart>(&m_parts[i])) {
                painter.save();
                painter.translate(x, std::floor((m_height - m_ringSide) / 2.0));
                DayRing::paint(painter, ring(*part, look.style, m_ringSide), inkOf(*part, look));
                painter.restore();
            } else {
                const int baseLine = (m_height + m_text.capHeight()) / 2;
                m_text.draw(painter, QPointF(x, baseLine), textOf(std::get<TextPart>(m_parts[i])),
                            look.palette.foreground);
            }
            x += widthOf(m_parts[i]);
        }
    }

private:
    [[nodiscard]] int points(double points) const { return static_cast<int>(std::lround(points * m_height / 22)); }
    [[nodiscard]] int widthOf(const MenuBarPart& part) const {
        if (const auto* text = std::get_if<TextPart>(&part)) {
            return static_cast<int>(std::ceil(m_text.width(textOf(*text))));
        }
        return m_ringSide;
    }
    /// A ring brings some room of its own, and belongs to the text behind it.
    [[nodiscard]] int gapBefore(std::size_t index) const {
        return points(std::holds_alternative<RingPart>(m_parts[index - 1]) ? 3 : 7);
    }

    std::span<const MenuBarPart> m_parts;
    int m_height;
    int m_ringSide;
    GlyphText m_text;
};

}  // namespace

std::vector<MenuBarPart> parts(std::span<const MenuBarItem> items, const Answer& answer) {
    std::vector<MenuBarPart> parts;
    for (const MenuBarItem item : items) {
        if (auto part = partOf(item, answer)) {
            parts.push_back(std::move(*part));
        }
    }
    if (parts.empty()) {
        parts.emplace_back(tightest(answer));
    }
    return parts;
}

Palette Palette::onDark() {
    return {.foreground = QColor(0xEC, 0xEE, 0xF1),
            .atRisk = QColor(0xFB, 0x97, 0x3F),
            .limited = QColor(0xFF, 0x61, 0x87)};
}

Palette Palette::onLight() {
    return {.foreground = QColor(0x1A, 0x1C, 0x20),
            .atRisk = QColor(0xBB, 0x4A, 0x00),
            .limited = QColor(0x9E, 0x0D, 0x3D)};
}

Palette Palette::highContrast(bool dark) {
    if (dark) {
        return {.foreground = Qt::white, .atRisk = QColor(0xFF, 0xB0, 0x66), .limited = QColor(0xFF, 0x8F, 0xAB)};
    }
    return {.foreground = Qt::black, .atRisk = QColor(0x8A, 0x36, 0x00), .limited = QColor(0x7D, 0x08, 0x2F)};
}

DayRing::Ring ring(const RingPart& part, GlyphStyle style, double side) {
    DayRing::Ring ring{.side = side, .segmented = !part.kind.isSession()};
    std::optional<double> evenPace;
    if (part.assessment) {
        evenPace = part.assessment->evenPacePercent;
        if (style != GlyphStyle::steer) {
            ring.used = part.assessment->window.usedPercent;
        }
    }
    ring.center = DayRing::center(style, part.steer, evenPace);
    return ring;
}

QImage image(std::span<const MenuBarPart> parts, const Look& look, int height) {
    const Strip strip(parts, std::max(1, height));
    QImage image = transparent(strip.width(), height);
    QPainter painter(&image);
    strip.paint(painter, look);
    return image;
}

bool isTemplate(std::span<const MenuBarPart> parts, const Look& look) {
    return !look.tint || std::none_of(parts.begin(), parts.end(), [](const MenuBarPart& part) {
        const auto* ring = std::get_if<RingPart>(&part);
        return ring != nullptr && isTinted(*ring);
    });
}

QImage cell(const MenuBarPart& part, const Look& look, int side) {
    QImage image = transparent(side, side);
    QPainter painter(&image);
    if (const auto* ringPart = std::get_if<RingPart>(&part)) {
        DayRing::paint(painter, ring(*ringPart, look.style, image.width()), inkOf(*ringPart, look));
    } else {
        CellText::paint(painter, CellText::lines(std::get<TextPart>(part).text), image.width(),
                        look.palette.foreground);
    }
    return image;
}

}  // namespace vorn::MenuBarGlyph
