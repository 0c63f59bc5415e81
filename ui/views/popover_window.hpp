#pragma once

#include <QElapsedTimer>

#include "ui/views/popover_placement.hpp"
#include "ui/views/view_window.hpp"

namespace vorn {

class UsageModel;

/// The popover over the tray: a small frameless window that closes on a click outside it, on Escape and on a second
/// click on the tray. It decides nothing; what people ask of it comes out as signals.
class PopoverWindow : public ViewWindow {
    Q_OBJECT

public:
    /// Both must outlive it.
    PopoverWindow(UsageModel& model, ViewEngine& engine, QObject* parent = nullptr);
    ~PopoverWindow() override;

    /// Shows it with the keyboard focus; moves it when it is shown already. Stays closed where it cannot be loaded.
    void open(const PopoverAnchor& anchor);
    /// For a click on the tray or the hot key. The click that closes the popover by being outside it may arrive here as
    /// well: it does not open it again.
    void toggle(const PopoverAnchor& anchor);

    /// Whether there is such a window to ask for; without, its button is absent. Both are false at first.
    void setHasDashboard(bool has);
    void setHasSettings(bool has);

signals:
    void refreshRequested();
    void dashboardRequested();
    void settingsRequested();
    void chooseClaudeRequested();
    void quitRequested();

protected:
    [[nodiscard]] Shown shown() override;
    void prepare(QQuickView& view) override;
    void present(QQuickView& view) override;
    void leave(QQuickView& view) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using ViewWindow::open;
    void closeByOutsideClick();
    void place();
    void grabMouse(int attemptsLeft);

    UsageModel& m_model;
    PopoverAnchor m_anchor;
    QElapsedTimer m_sinceOutsideClick;  ///< Runs since a click outside closed it.
    bool m_hadFocus = false;
    bool m_hasDashboard = false;
    bool m_hasSettings = false;
};

}  // namespace vorn
