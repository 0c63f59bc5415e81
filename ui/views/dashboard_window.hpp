#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

#include "ui/views/view_engine.hpp"
#include "ui/views/window_place.hpp"

namespace vorn {

class UsageModel;

/// The window that explains everything: the answer, a chart for every limit, and what burnt the quota. An ordinary
/// window that may stay open; its engine, presenters and charts exist only while it does. It decides nothing; what
/// people ask of it comes out as signals. Main thread only.
class DashboardWindow : public QObject {
    Q_OBJECT

public:
    /// `model` and `engine` must outlive it. `place`: where the window was last time.
    DashboardWindow(UsageModel& model, ViewEngine& engine, WindowPlaceStore place = {}, QObject* parent = nullptr);
    ~DashboardWindow() override;

    /// Shows it with the keyboard focus; brings it to the front when it is shown already. Stays closed where it cannot
    /// be loaded.
    void open();
    Q_SLOT void close();
    [[nodiscard]] bool isOpen() const;

    /// Whether there is such a window to ask for; without, its button is absent. False at first.
    void setHasSettings(bool has);

signals:
    void opened();
    void closed();
    void refreshRequested();
    void settingsRequested();
    void chooseClaudeRequested();
    /// `content`: "history" or "activity"; `format`: "csv" or "json".
    void exportRequested(const QString& content, const QString& format);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class View;

    /// Whether it could be made.
    bool createView();
    void rememberPlace() const;

    UsageModel& m_model;
    ViewEngine& m_engine;
    WindowPlaceStore m_place;
    std::unique_ptr<View> m_view;                  ///< While open.
    std::vector<std::unique_ptr<View>> m_closing;  ///< Until the events that closed them are through.
    bool m_hasSettings = false;
};

}  // namespace vorn
