#include "ui/dashboard/dashboard_window.hpp"

#include <utility>

#include "ui/dashboard/dashboard_presenter.hpp"
#include "ui/dashboard/qml_types.hpp"
#include "ui/window/app_requests.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/Dashboard/DashboardView.qml";
constexpr QSize kSize{1000, 720};
constexpr QSize kLeastSize{560, 420};

}  // namespace

DashboardWindow::DashboardWindow(UsageModel& model, AppRequests& requests, ViewEngine& engine, WindowPlaceStore place,
                                 QObject* parent)
    : ViewWindow(engine, parent), m_model(model), m_requests(requests), m_place(std::move(place)) {}

DashboardWindow::~DashboardWindow() {
    discardViews();
}

ViewWindow::Shown DashboardWindow::shown() {
    registerDashboardTypes();
    const auto presenter = std::make_shared<DashboardPresenter>(m_model);
    return {.title = "Dashboard",
            .url = kViewUrl,
            .properties = {{"presenter", QVariant::fromValue(presenter.get())},
                           {"requests", QVariant::fromValue(&m_requests)}},
            .content = presenter};
}

void DashboardWindow::prepare(QQuickView& view) {
    restorePlace(view, m_place, {.usual = kSize, .least = kLeastSize});
}

void DashboardWindow::leave(QQuickView& view) {
    savePlace(view, m_place);
}

}  // namespace vorn
