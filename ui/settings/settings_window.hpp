#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "ui/window/view_window.hpp"
#include "ui/window/window_place.hpp"

namespace vorn {

class AppRequests;
class ClaudeFinder;
class DesktopAppearance;
class HotKey;
class Integrations;
class NotificationCenter;
class PanelBrightness;
class Preferences;
class UsageModel;

/// The window of the settings. What it changes holds at once.
class SettingsWindow : public ViewWindow {
    Q_OBJECT

public:
    /// The pages, in the order in which they are listed.
    enum class Page : std::uint8_t { general, menuBar, notifications, claudeCode };
    static constexpr std::array kPages{Page::general, Page::menuBar, Page::notifications, Page::claudeCode};

    /// What the window shows and changes; all of it must outlive the window.
    struct Deps {
        Preferences& preferences;
        Integrations& integrations;
        UsageModel& model;
        AppRequests& requests;
        NotificationCenter* notifications = nullptr;  ///< Null where the system has none.
        HotKey& hotKey;
        DesktopAppearance& appearance;
        PanelBrightness& panel;
        bool hasCells = true;      ///< `StatusItem::hasCells()`.
        WindowPlaceStore place{};  ///< Where its place on the screen is kept between runs.
    };

    SettingsWindow(const Deps& deps, ViewEngine& engine, QObject* parent = nullptr);
    ~SettingsWindow() override;

    using ViewWindow::open;  ///< On the page that was shown last.
    void open(Page page);

protected:
    [[nodiscard]] Shown shown() override;
    void prepare(QQuickView& view) override;
    void leave(QQuickView& view) override;

private:
    const Deps m_deps;
    std::unique_ptr<ClaudeFinder> m_finder;  ///< Remembers from one opening to the next.
    Page m_page = Page::general;
};

}  // namespace vorn
