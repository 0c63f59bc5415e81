#pragma once

#include <QElapsedTimer>

#include "ui/popover/popover_placement.hpp"
#include "ui/window/view_window.hpp"

namespace vorn {

class AppRequests;
class UsageModel;

/// The popover over the tray: a small frameless window that closes on a click outside it, on Escape and on a second
/// click on the tray. It decides nothing.
class PopoverWindow : public ViewWindow {
    Q_OBJECT

public:
    /// `model`, `requests` and `engine` must outlive it.
    PopoverWindow(const UsageModel& model, AppRequests& requests, ViewEngine& engine, QObject* parent = nullptr);
    ~PopoverWindow() override;

    /// Shows the popover with the keyboard focus; moves it when it is shown already. Stays closed where it cannot be
    /// loaded.
    void open(const PopoverAnchor& anchor);
    /// For a click on the tray or the hot key. The click that closes the popover by being outside it may arrive here as
    /// well: it does not open it again.
    void toggle(const PopoverAnchor& anchor);

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

    const UsageModel& m_model;
    AppRequests& m_requests;
    PopoverAnchor m_anchor;
    QElapsedTimer m_sinceOutsideClick;  ///< Runs since a click outside closed it.
    bool m_hadFocus = false;
};

}  // namespace vorn
