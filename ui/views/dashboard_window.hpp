#pragma once

#include <QString>

#include "ui/views/view_window.hpp"
#include "ui/views/window_place.hpp"

namespace vorn {

class UsageModel;

/// The window that explains everything: the answer, a chart for every limit, and what burnt the quota. It decides
/// nothing; what people ask of it comes out as signals.
class DashboardWindow : public ViewWindow {
    Q_OBJECT

public:
    /// `model` and `engine` must outlive it. `place`: where the window was last time.
    DashboardWindow(UsageModel& model, ViewEngine& engine, WindowPlaceStore place = {}, QObject* parent = nullptr);
    ~DashboardWindow() override;

    /// Whether there is such a window to ask for; without, its button is absent. False at first.
    void setHasSettings(bool has);

signals:
    void refreshRequested();
    void settingsRequested();
    void chooseClaudeRequested();
    /// `content`: "history" or "activity"; `format`: "csv" or "json".
    void exportRequested(const QString& content, const QString& format);

protected:
    [[nodiscard]] Shown shown() override;
    void prepare(QQuickView& view) override;
    void leave(QQuickView& view) override;

private:
    UsageModel& m_model;
    WindowPlaceStore m_place;
    bool m_hasSettings = false;
};

}  // namespace vorn
