#include "ui/settings/settings_window.hpp"

#include <QQuickItem>
#include <utility>

#include "model/integrations.hpp"
#include "ui/settings/qml_types.hpp"
#include "ui/settings/settings_pages.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/Settings/SettingsView.qml";
/// Of the size it opens with; below it, rows would not fit any more.
constexpr double kLeastShare = 0.75;

}  // namespace

SettingsWindow::SettingsWindow(const Deps& deps, ViewEngine& engine, QObject* parent)
    : ViewWindow(engine, parent), m_deps(deps), m_finder(std::make_unique<ClaudeFinder>()) {}

SettingsWindow::~SettingsWindow() {
    discardViews();
}

void SettingsWindow::open(Page page) {
    m_page = page;
    setViewProperty("page", static_cast<int>(page));
    open();
}

ViewWindow::Shown SettingsWindow::shown() {
    registerSettingsTypes();
    m_deps.integrations.refresh();
    const auto content = std::make_shared<SettingsPages>(m_deps, *m_finder);
    return {.title = "Settings", .url = kViewUrl, .properties = content->properties(m_page), .content = content};
}

void SettingsWindow::prepare(QQuickView& view) {
    const QSizeF wanted(view.rootObject()->implicitWidth(), view.rootObject()->implicitHeight());
    const QSize size = wanted.toSize();
    restorePlace(view, m_deps.place, {.usual = size, .least = size * kLeastShare});
    // Who comes back to the window may have changed things elsewhere.
    connect(&view, &QWindow::activeChanged, this, [this] {
        if (isOpen() && this->view()->isActive()) {
            m_deps.integrations.refresh();
        }
    });
}

void SettingsWindow::leave(QQuickView& view) {
    savePlace(view, m_deps.place);
    m_page = static_cast<Page>(view.rootObject()->property("page").toInt());
}

}  // namespace vorn
