#include "ui/controls/theme.hpp"

#include <QEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QQmlEngine>
#include <algorithm>
#include <cmath>

namespace vorn {
namespace {

constexpr const char* kAppearanceProperty = "vornAppearance";
/// The font that the sizes were drawn for.
constexpr double kDesignedBody = 13;
constexpr double kLeastScale = 0.8;
constexpr double kGreatestScale = 2.5;

QColor rgb(QRgb value) {
    return QColor::fromRgb(value);
}

QColor translucent(QColor color, double share) {
    color.setAlphaF(static_cast<float>(share));
    return color;
}

QColor mixed(const QColor& over, const QColor& under, double share) {
    const auto channel = [&](float one, float other) {
        return static_cast<float>(share) * one + static_cast<float>(1 - share) * other;
    };
    return QColor::fromRgbF(channel(over.redF(), under.redF()), channel(over.greenF(), under.greenF()),
                            channel(over.blueF(), under.blueF()));
}

ThemeColors lightColors() {
    return {.window = rgb(0xF3F4F6),
            .surface = rgb(0xFFFFFF),
            .sunken = rgb(0xECEEF1),
            .line = rgb(0xDCDFE4),
            .fieldLine = rgb(0x858B96),
            .text = rgb(0x1A1C20),
            .secondText = rgb(0x555B66),
            .thirdText = rgb(0x656B76),
            .accent = rgb(0x1A5FB4),
            .watch = rgb(0x5F4A00),
            .atRisk = rgb(0xBB4A00),
            .limited = rgb(0x9E0D3D),
            .textOnAccent = rgb(0xFFFFFF),
            .tintShare = 0.06,
            .paleShare = 0.34};
}

ThemeColors darkColors() {
    return {.window = rgb(0x1B1D21),
            .surface = rgb(0x25282D),
            .sunken = rgb(0x1F2226),
            .line = rgb(0x383C43),
            .fieldLine = rgb(0x767D89),
            .text = rgb(0xECEEF1),
            .secondText = rgb(0xA9B0BC),
            .thirdText = rgb(0x969DA9),
            .accent = rgb(0x78AEF2),
            .watch = rgb(0xF3E183),
            .atRisk = rgb(0xFB973F),
            .limited = rgb(0xFF6187),
            .textOnAccent = rgb(0x10233C),
            .tintShare = 0.08,
            .paleShare = 0.34};
}

/// Borders become text, tints go, and text is text.
void raiseContrast(ThemeColors& colors, bool isDark) {
    const QColor paper = isDark ? rgb(0x000000) : rgb(0xFFFFFF);
    const QColor ink = isDark ? rgb(0xFFFFFF) : rgb(0x000000);
    colors.window = colors.surface = colors.sunken = paper;
    colors.text = colors.secondText = colors.thirdText = ink;
    colors.line = colors.fieldLine = ink;
    if (!isDark) {
        colors.atRisk = rgb(0x8F3800);
        colors.accent = rgb(0x0F4A94);
    }
    colors.tintShare = 0;
    colors.paleShare = 0.45;
}

}  // namespace

QColor ThemeColors::status(StatusForViews::Status status) const {
    switch (status) {
        case StatusForViews::Comfortable:
            return accent;
        case StatusForViews::Watch:
            return watch;
        case StatusForViews::AtRisk:
            return atRisk;
        case StatusForViews::Limited:
            return limited;
        case StatusForViews::Unknown:
            break;
    }
    return thirdText;
}

QColor ThemeColors::tint(StatusForViews::Status tinting) const {
    return tinting == StatusForViews::Unknown ? surface : mixed(status(tinting), surface, tintShare);
}

QColor ThemeColors::pale(StatusForViews::Status forecast) const {
    return mixed(status(forecast), surface, paleShare);
}

ThemeColors themeColors(const DesktopAppearance::Look& look) {
    ThemeColors colors = look.isDark ? darkColors() : lightColors();
    if (look.highContrast) {
        raiseContrast(colors, look.isDark);
    }
    colors.track = translucent(colors.text, look.isDark ? 0.16 : 0.13);
    colors.grid = translucent(colors.text, look.highContrast ? 0.25 : 0.09);
    colors.area = translucent(colors.accent, look.isDark ? 0.16 : 0.13);
    colors.hover = translucent(colors.text, look.isDark ? 0.10 : 0.07);
    colors.pressed = translucent(colors.text, look.isDark ? 0.18 : 0.14);
    return colors;
}

ThemeSizes themeSizes(double bodyPixels) {
    const double scale = std::clamp(bodyPixels / kDesignedBody, kLeastScale, kGreatestScale);
    const auto scaled = [scale](double pixels) {
        return static_cast<int>(std::lround(pixels * scale));
    };
    return {.scale = scale,
            .caption = scaled(11),
            .small = scaled(12),
            .body = scaled(13),
            .title = scaled(14),
            .head = scaled(18),
            .percent = scaled(20),
            .largeHead = scaled(22),
            .hair = 1,
            .tight = scaled(2),
            .near = scaled(4),
            .gap = scaled(8),
            .between = scaled(12),
            .inset = scaled(16),
            .edge = scaled(24),
            .control = scaled(30),
            .iconButton = scaled(32),
            .icon = scaled(16),
            .mark = scaled(10),
            .bar = scaled(8),
            .ring = scaled(60),
            .ringMargin = scaled(60 * 1.5 / 18),
            .popoverWidth = scaled(360),
            .popoverRadius = scaled(12),
            .cardRadius = scaled(10),
            .controlRadius = scaled(6),
            .focusWidth = 2};
}

void Theme::setAppearance(QQmlEngine& engine, DesktopAppearance& appearance) {
    engine.setProperty(kAppearanceProperty, QVariant::fromValue(&appearance));
}

Theme* Theme::create(QQmlEngine* engine, QJSEngine*) {
    auto* const appearance = engine->property(kAppearanceProperty).value<DesktopAppearance*>();
    Q_ASSERT(appearance);
    return new Theme(*appearance, engine);
}

Theme::Theme(DesktopAppearance& appearance, QObject* parent) : QObject(parent), m_appearance(appearance) {
    connect(&appearance, &DesktopAppearance::changed, this, &Theme::update);
    QCoreApplication::instance()->installEventFilter(this);
    update();
}

bool Theme::mirrored() {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft;
}

QString Theme::fixedFamily() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationLayoutDirectionChange) {
        update();
    }
    return QObject::eventFilter(watched, event);
}

void Theme::update() {
    m_colors = themeColors(m_appearance.look());
    m_sizes = themeSizes(QFontInfo(QGuiApplication::font()).pixelSize());
    emit changed();
}

}  // namespace vorn
