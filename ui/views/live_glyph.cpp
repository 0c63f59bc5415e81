#include "ui/views/live_glyph.hpp"

#include <QStringList>
#include <array>

#include "app/model/model_parts.hpp"
#include "app/model/preferences.hpp"
#include "app/model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "platform/panel_brightness.hpp"
#include "ui/views/tray_look.hpp"

namespace vorn {
namespace {

std::unique_ptr<UsageModel> makeExample(Preferences& preferences) {
    auto model = std::make_unique<UsageModel>(preferences, makeModelParts());
    model->startDemo(demo::makeDemo(demo::Scenario::atRisk, systemNow()));
    return model;
}

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

LiveGlyph::~LiveGlyph() = default;

QColor LiveGlyph::panelColor() const {
    const bool isDark = m_sources.panel.isDark();
    if (m_sources.appearance.highContrast()) {
        return isDark ? Qt::black : Qt::white;
    }
    return QColor::fromRgb(isDark ? 0x131518 : 0xE4E7EB);
}

const UsageModel& LiveGlyph::figures() {
    if (!m_sources.model.assessments().empty()) {
        m_example.reset();
        return m_sources.model;
    }
    if (!m_example) {
        m_example = makeExample(m_sources.preferences);
    }
    return *m_example;
}

void LiveGlyph::update() {
    const UsageModel& model = figures();
    const std::vector<MenuBarItem> items = m_sources.preferences.menuBarItems();
    m_items = MenuBarGlyph::parts(items, model);
    m_singleRing = MenuBarGlyph::parts(vorn::singleRing(items), model);
    m_sample = MenuBarGlyph::parts(std::array{MenuBarItem::weekRing}, model);
    m_look = trayLook(m_sources.preferences, m_sources.appearance, m_sources.panel);
    QStringList spoken;
    for (const MenuBarPart& part : m_items) {
        spoken << spokenPart(part);
    }
    m_spoken = spoken.join(QStringLiteral(", "));
    emit changed();
}

}  // namespace vorn
