#include "model/preferences/preferences.hpp"

#include <QSettings>
#include <QVariant>
#include <algorithm>
#include <cmath>
#include <utility>

#include "model/preferences/preferences_store.hpp"

namespace vorn {
namespace {

constexpr double kLeastRefresh = 1;    // minutes
constexpr double kMostRefresh = 1440;  // minutes

// Text files give texts for everything, other stores typed values. Each of these is empty for what is not stored or of
// another type.

std::optional<double> number(const QVariant& stored) {
    bool isNumber = false;
    const double value = stored.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<bool> truth(const QVariant& stored) {
    if (stored.typeId() == QMetaType::Bool) {
        return stored.toBool();
    }
    const QString text = stored.toString();
    if (text == u"true" || text == u"1") {
        return true;
    }
    return text == u"false" || text == u"0" ? std::optional(false) : std::nullopt;
}

std::optional<QString> text(const QVariant& stored) {
    return stored.typeId() == QMetaType::QString ? std::optional(stored.toString()) : std::nullopt;
}

std::optional<std::string> bytes(const QVariant& stored) {
    const bool isData = stored.typeId() == QMetaType::QByteArray || stored.typeId() == QMetaType::QString;
    return isData ? std::optional(stored.toByteArray().toStdString()) : std::nullopt;
}

std::string textOrEmpty(const PreferencesStore& store, const char* key) {
    return text(store.value(key)).value_or(QString()).toStdString();
}

MenuBarLayout loadLayout(const PreferencesStore& store) {
    const auto stored = bytes(store.value("menuBarLayout"));
    auto layout = stored ? decodeMenuBarLayout(*stored) : std::nullopt;
    return layout ? *std::move(layout)
                  : migratedMenuBarLayout(textOrEmpty(store, "steerWindow"), textOrEmpty(store, "menuBarText"));
}

QString placeKey(const QString& window) {
    return QStringLiteral("windows/%1/place").arg(window);
}

QString maximizedKey(const QString& window) {
    return QStringLiteral("windows/%1/maximized").arg(window);
}

}  // namespace

std::unique_ptr<QSettings> Preferences::standardStore() {
    auto store = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Vorn"),
                                             QStringLiteral("Vorn"));
    store->setFallbacksEnabled(false);  // what is set for all programs of a maker or a machine is not the user's choice
    return store;
}

Preferences::Preferences(std::unique_ptr<QSettings> defaults, QObject* parent)
    : QObject(parent), m_defaults(std::make_unique<PreferencesStore>(std::move(defaults))) {
    const PreferencesStore& store = *m_defaults;
    const auto refresh = number(store.value("refreshMinutes"));
    if (refresh && *refresh >= kLeastRefresh && *refresh <= kMostRefresh) {
        m_refreshMinutes = *refresh;
    }
    m_menuBarLayout = loadLayout(store);
    for (const auto& [key, property] : {std::pair{"colorWhenAtRisk", &m_colorWhenAtRisk},
                                        {"notifyAtRisk", &m_notifyAtRisk},
                                        {"notifyLimited", &m_notifyLimited},
                                        {"notifyReset", &m_notifyReset},
                                        {"useLocalActivity", &m_useLocalActivity}}) {
        *property = truth(store.value(key)).value_or(*property);
    }
    m_claudePathOverride = text(store.value("claudePathOverride")).value_or(QString());
    m_glyphStyle = glyphStyleFrom(textOrEmpty(store, "glyphStyle")).value_or(m_glyphStyle);
    m_trayCells = trayCellsFrom(textOrEmpty(store, "trayCells")).value_or(m_trayCells);
    m_storeProblem = store.problem();
}

Preferences::~Preferences() = default;

void Preferences::detachFromStore() {
    m_defaults->detach();
}

template <typename Value>
void Preferences::change(Value& property, const Value& value, const char* key, const QVariant& stored, Signal changed) {
    if (property == value) {
        return;
    }
    property = value;
    m_defaults->save(QString::fromLatin1(key), stored);
    emit(this->*changed)();
    if (std::exchange(m_storeProblem, m_defaults->problem()) != m_defaults->problem()) {
        emit storeProblemChanged();
    }
}

QRect Preferences::windowPlace(const QString& window) const {
    return m_defaults->value(placeKey(window)).toRect();
}

bool Preferences::isWindowMaximized(const QString& window) const {
    return m_defaults->value(maximizedKey(window)).toBool();
}

void Preferences::setWindowPlace(const QString& window, const QRect& place, bool isMaximized) {
    if (place != windowPlace(window)) {
        m_defaults->save(placeKey(window), place);
    }
    if (isMaximized != isWindowMaximized(window)) {
        m_defaults->save(maximizedKey(window), isMaximized);
    }
}

std::vector<MenuBarItem> Preferences::menuBarItems() const {
    std::vector<MenuBarItem> items;
    for (const MenuBarEntry& entry : m_menuBarLayout) {
        if (entry.isOn) {
            items.push_back(entry.item);
        }
    }
    return items;
}

void Preferences::setRefreshMinutes(double minutes) {
    if (!std::isnan(minutes)) {
        const double inRange = std::clamp(minutes, kLeastRefresh, kMostRefresh);
        change(m_refreshMinutes, inRange, "refreshMinutes", inRange, &Preferences::refreshMinutesChanged);
    }
}

void Preferences::setColorWhenAtRisk(bool on) {
    change(m_colorWhenAtRisk, on, "colorWhenAtRisk", on, &Preferences::colorWhenAtRiskChanged);
}

void Preferences::setNotifyAtRisk(bool on) {
    change(m_notifyAtRisk, on, "notifyAtRisk", on, &Preferences::notifyAtRiskChanged);
}

void Preferences::setNotifyLimited(bool on) {
    change(m_notifyLimited, on, "notifyLimited", on, &Preferences::notifyLimitedChanged);
}

void Preferences::setNotifyReset(bool on) {
    change(m_notifyReset, on, "notifyReset", on, &Preferences::notifyResetChanged);
}

void Preferences::setClaudePathOverride(const QString& path) {
    change(m_claudePathOverride, path, "claudePathOverride", path, &Preferences::claudePathOverrideChanged);
}

void Preferences::setUseLocalActivity(bool on) {
    change(m_useLocalActivity, on, "useLocalActivity", on, &Preferences::useLocalActivityChanged);
}

void Preferences::setGlyphStyle(GlyphStyle style) {
    change(m_glyphStyle, style, "glyphStyle", QString::fromLatin1(rawValue(style)), &Preferences::glyphStyleChanged);
}

void Preferences::setTrayCells(TrayCells cells) {
    change(m_trayCells, cells, "trayCells", QString::fromLatin1(rawValue(cells)), &Preferences::trayCellsChanged);
}

void Preferences::setMenuBarLayout(MenuBarLayout layout) {
    layout = completed(layout);
    change(m_menuBarLayout, layout, "menuBarLayout", QByteArray::fromStdString(encode(layout)),
           &Preferences::menuBarLayoutChanged);
}

void Preferences::moveMenuBarItem(MenuBarItem item, int offset) {
    MenuBarLayout layout = m_menuBarLayout;
    const auto found = std::ranges::find(layout, item, &MenuBarEntry::item);
    const std::int64_t target = found - layout.begin() + std::int64_t{offset};
    if (found == layout.end() || target < 0 || target >= std::ssize(layout)) {
        return;
    }
    std::swap(*found, layout[static_cast<std::size_t>(target)]);
    setMenuBarLayout(std::move(layout));
}

}  // namespace vorn
