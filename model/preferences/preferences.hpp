#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <memory>

#include "model/preferences/menu_bar_layout.hpp"

class QSettings;

namespace vorn {

class PreferencesStore;

/// The user's settings, kept in the platform's per-user store. Every property is stored at once and notifies when its
/// value really changed. Main thread only. What the store holds but cannot mean (another version's value, a number out
/// of range) counts as not stored; it is overwritten only when the user changes that property.
class Preferences : public QObject {
    Q_OBJECT

public:
    /// Takes over the store.
    explicit Preferences(std::unique_ptr<QSettings> defaults, QObject* parent = nullptr);
    ~Preferences() override;

    /// A demonstration: from now on changes hold in memory alone.
    void detachFromStore();

    /// The standard store of this user.
    static std::unique_ptr<QSettings> standardStore();

    [[nodiscard]] double refreshMinutes() const { return m_refreshMinutes; }  ///< Finite, 1 to 1440.
    [[nodiscard]] bool colorWhenAtRisk() const { return m_colorWhenAtRisk; }
    [[nodiscard]] bool notifyAtRisk() const { return m_notifyAtRisk; }
    [[nodiscard]] bool notifyLimited() const { return m_notifyLimited; }
    [[nodiscard]] bool notifyReset() const { return m_notifyReset; }
    /// Empty: the executable is located automatically.
    [[nodiscard]] const QString& claudePathOverride() const { return m_claudePathOverride; }
    [[nodiscard]] bool useLocalActivity() const { return m_useLocalActivity; }
    [[nodiscard]] GlyphStyle glyphStyle() const { return m_glyphStyle; }
    [[nodiscard]] TrayCells trayCells() const { return m_trayCells; }
    /// Every item exactly once.
    [[nodiscard]] const MenuBarLayout& menuBarLayout() const { return m_menuBarLayout; }
    /// The items that are on, in layout order.
    [[nodiscard]] std::vector<MenuBarItem> menuBarItems() const;
    /// Where the user left a window; null when that is not known.
    [[nodiscard]] QRect windowPlace(const QString& window) const;
    [[nodiscard]] bool isWindowMaximized(const QString& window) const;
    /// What is wrong with the store (it cannot be read, or changes cannot be saved), for the settings; else empty.
    [[nodiscard]] const QString& storeProblem() const { return m_storeProblem; }

    /// Brought into the range; what is no number changes nothing.
    void setRefreshMinutes(double minutes);
    void setColorWhenAtRisk(bool on);
    void setNotifyAtRisk(bool on);
    void setNotifyLimited(bool on);
    void setNotifyReset(bool on);
    void setClaudePathOverride(const QString& path);
    void setUseLocalActivity(bool on);
    void setGlyphStyle(GlyphStyle style);
    void setTrayCells(TrayCells cells);
    void setWindowPlace(const QString& window, const QRect& place, bool isMaximized = false);
    /// Completed or freed of repetitions where it does not hold every item exactly once.
    void setMenuBarLayout(MenuBarLayout layout);
    /// Swaps the item with the one `offset` places to its right (negative: left); nothing when there is none there.
    void moveMenuBarItem(MenuBarItem item, int offset);

signals:
    void refreshMinutesChanged();
    void colorWhenAtRiskChanged();
    void notifyAtRiskChanged();
    void notifyLimitedChanged();
    void notifyResetChanged();
    void claudePathOverrideChanged();
    void useLocalActivityChanged();
    void glyphStyleChanged();
    void trayCellsChanged();
    void menuBarLayoutChanged();
    void storeProblemChanged();

private:
    using Signal = void (Preferences::*)();
    template <typename Value>
    void change(Value& property, const Value& value, const char* key, const QVariant& stored, Signal changed);

    std::unique_ptr<PreferencesStore> m_defaults;
    double m_refreshMinutes = 5;
    bool m_colorWhenAtRisk = true;
    bool m_notifyAtRisk = true;
    bool m_notifyLimited = true;
    bool m_notifyReset = true;
    QString m_claudePathOverride;
    bool m_useLocalActivity = true;
    GlyphStyle m_glyphStyle = GlyphStyle::usageAndSteer;
    TrayCells m_trayCells = TrayCells::perItem;
    MenuBarLayout m_menuBarLayout;
    QString m_storeProblem;  ///< As last announced.
};

}  // namespace vorn
