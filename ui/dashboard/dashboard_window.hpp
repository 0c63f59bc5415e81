#pragma once

#include "ui/window/view_window.hpp"
#include "ui/window/window_place.hpp"

namespace vorn {

class AppRequests;
class UsageModel;

/// The window that explains everything: the answer, a chart for every limit, and what burnt the quota.
class DashboardWindow : public ViewWindow {
    Q_OBJECT

public:
    /// `model`, `requests` and `engine` must outlive it. `place`: where the window was last time.
    DashboardWindow(UsageModel& model, AppRequests& requests, ViewEngine& engine, WindowPlaceStore place = {},
                    QObject* parent = nullptr);
    ~DashboardWindow() override;

protected:
    [[nodiscard]] Shown shown() override;
    void prepare(QQuickView& view) override;
    void leave(QQuickView& view) override;

private:
    UsageModel& m_model;
    AppRequests& m_requests;
    WindowPlaceStore m_place;
};

}  // namespace vorn
