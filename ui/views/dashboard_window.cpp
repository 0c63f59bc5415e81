#include "ui/views/dashboard_window.hpp"

#include <QQuickItem>
#include <utility>

#include "ui/views/dashboard_content.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/DashboardView.qml";
constexpr QSize kSize{1000, 720};
constexpr QSize kLeastSize{560, 420};

}  // namespace

DashboardWindow::DashboardWindow(UsageModel& model, ViewEngine& engine, WindowPlaceStore place, QObject* parent)
    : ViewWindow(engine, parent), m_model(model), m_place(std::move(place)) {}

DashboardWindow::~DashboardWindow() {
    discardViews();
}

void DashboardWindow::setHasSettings(bool has) {
    m_hasSettings = has;
    setViewProperty("hasSettings", has);
}

ViewWindow::Shown DashboardWindow::shown() {
    const auto content = std::make_shared<DashboardContent>(m_model);
    return {.title = "Dashboard", .url = kViewUrl, .properties = content->properties(), .content = content};
}

void DashboardWindow::prepare(QQuickView& view) {
    restorePlace(view, m_place, {.usual = kSize, .least = kLeastSize});
    setHasSettings(m_hasSettings);
    const QQuickItem* const root = view.rootObject();
    connect(root, SIGNAL(refreshRequested()), this, SIGNAL(refreshRequested()));
    connect(root, SIGNAL(settingsRequested()), this, SIGNAL(settingsRequested()));
    connect(root, SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
    connect(root, SIGNAL(exportRequested(QString, QString)), this, SIGNAL(exportRequested(QString, QString)));
}

void DashboardWindow::leave(QQuickView& view) {
    savePlace(view, m_place);
}

}  // namespace vorn
