#include "ui/tray/live_glyph.hpp"

#include <QStringList>
#include <array>

#include "demo/demo_answer.hpp"
#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/panel_brightness.hpp"
#include "ui/tray/tray_look.hpp"

namespace vorn {
namespace {

QString spokenPart(const MenuBarPart& part) {
    if (const auto* const text = std::get_if<TextPart>(&part)) {
        return QString::fromStdString(text->text);
    }
    return QString::fromStdString(std::get<RingPart>(part).kind.title());
}

}  // namespace

LiveGlyph::LiveGlyph(const Sources& sources, QObject* parent) : QObject(parent), m_sources(sources) {
    connect(&sources.model, &UsageModel::changed, this, &LiveGlyph::update);
    connect(&sources.appearance, &DesktopAppearance::changed, this, &LiveGlyph::update);
    connect(&sources.panel, &PanelBrightness::changed, this, &LiveGlyph::update);
    connect(&sources.preferences, &Preferences::menuBarLayoutChanged, this, &LiveGlyph::update);
    connect(&sources.preferences, &Preferences::glyphStyleChanged, this, &LiveGlyph::update);
    connect(&sources.preferences, &Preferences::colorWhenAtRiskChanged, this, &LiveGlyph::update);
    update();
}

QColor LiveGlyph::panelColor() const {
    const bool isDark = m_sources.panel.isDark();
    if (m_sources.appearance.highContrast()) {
        return isDark ? Qt::black : Qt::white;
    }
    return QColor::fromRgb(isDark ? 0x131518 : 0xE4E7EB);
}

const Answer& LiveGlyph::figures() {
    const Answer& answer = m_sources.model.answer();
    if (!answer.cards.empty()) {
        m_example.reset();
        return answer;
    }
    if (!m_example) {
        const Instant now = systemNow();
        m_example = demo::answer(demo::makeDemo(demo::Scenario::atRisk, now), now);
    }
    return *m_example;
}

void LiveGlyph::update() {
    const Answer& answer = figures();
    const std::vector<MenuBarItem> items = m_sources.preferences.menuBarItems();
    m_items = MenuBarGlyph::parts(items, answer);
    m_singleRing = MenuBarGlyph::parts(vorn::singleRing(items), answer);
    m_sample = MenuBarGlyph::parts(std::array{MenuBarItem::weekRing}, answer);
    m_look = trayLook(m_sources.preferences, m_sources.appearance, m_sources.panel);
    QStringList spoken;
    for (const MenuBarPart& part : m_items) {
        spoken << spokenPart(part);
    }
    m_spoken = spoken.join(QStringLiteral(", "));
    emit changed();
}

}  // namespace vorn
