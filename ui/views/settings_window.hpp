#pragma once

#include <QObject>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "ui/views/view_engine.hpp"
#include "ui/views/window_place.hpp"

namespace vorn {

class ClaudeFinder;
class DesktopAppearance;
class HotKey;
class Integrations;
class NotificationCenter;
class PanelBrightness;
class Preferences;
class UsageModel;

/// The window of the settings: an ordinary window, of which there is one. What it changes holds at once. Main thread
/// only.
class SettingsWindow : public QObject {
    Q_OBJECT

public:
    /// In the order in which they are listed.
    enum class Page : std::uint8_t { general, menuBar, notifications, claudeCode };
    static constexpr std::array kPages{Page::general, Page::menuBar, Page::notifications, Page::claudeCode};

    /// All of them must outlive the window.
    struct Deps {
        Preferences& preferences;
        Integrations& integrations;
        UsageModel& model;
        NotificationCenter* notifications = nullptr;  ///< Null where the system has none.
        HotKey& hotKey;
        DesktopAppearance& appearance;
        PanelBrightness& panel;
        bool hasCells = true;      ///< `StatusItem::hasCells()`.
        WindowPlaceStore place{};  ///< Where its place on the screen is kept between runs.
    };

    SettingsWindow(const Deps& deps, ViewEngine& engine, QObject* parent = nullptr);
    ~SettingsWindow() override;

    /// Shows it in front, on the page that was shown last. Stays closed where it cannot be loaded.
    void open();
    void open(Page page);
    Q_SLOT void close();
    [[nodiscard]] bool isOpen() const;

signals:
    void opened();
    void closed();
    /// The user wants to choose the `claude` executable in a dialog.
    void chooseClaudeRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class View;

    bool createView();
    void rememberPlace() const;

    const Deps m_deps;
    ViewEngine& m_engine;
    std::unique_ptr<ClaudeFinder> m_finder;        ///< Remembers from one opening to the next.
    std::unique_ptr<View> m_view;                  ///< While open.
    std::vector<std::unique_ptr<View>> m_closing;  ///< Until the events that closed them are through.
    Page m_page = Page::general;
};

}  // namespace vorn
