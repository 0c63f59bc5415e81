#include "ui/views/settings_window.hpp"

#include <QQuickItem>
#include <utility>

#include "app/model/integrations.hpp"
#include "ui/views/settings_pages.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/SettingsView.qml";
/// Of the size it opens with; below it, rows would not fit any more.
constexpr double kLeastShare = 0.75;

}  // namespace

/// The window with what it shows.
class SettingsWindow::Content : public View {
public:
    Content(ViewEngine::Hold hold, const SettingsWindow::Deps& deps, ClaudeFinder& finder, Page page)
        : View(std::move(hold)), m_pages(deps, finder) {
        setTitle("Settings");
        setFlags(Qt::Window);
        setResizeMode(SizeRootObjectToView);
        setInitialProperties(m_pages.properties(page));
        setSource(QUrl(kViewUrl));
    }
    ~Content() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    SettingsPages m_pages;
};

SettingsWindow::SettingsWindow(const Deps& deps, ViewEngine& engine, QObject* parent)
    : ViewWindow(engine, deps.place, parent), m_deps(deps), m_finder(std::make_unique<ClaudeFinder>()) {}

SettingsWindow::~SettingsWindow() {
    discardViews();
}

void SettingsWindow::open(Page page) {
    m_page = page;
    if (isOpen()) {
        view()->rootObject()->setProperty("page", static_cast<int>(page));
    }
    open();
}

std::unique_ptr<ViewWindow::View> SettingsWindow::makeView(ViewEngine::Hold hold) {
    m_deps.integrations.refresh();
    return std::make_unique<Content>(std::move(hold), m_deps, *m_finder, m_page);
}

ViewWindow::Sizes SettingsWindow::sizesFor(const QQuickItem& root) const {
    const QSize size(qRound(root.implicitWidth()), qRound(root.implicitHeight()));
    return {.usual = size, .least = size * kLeastShare};
}

void SettingsWindow::prepare(View& view) {
    // Who comes back to the window may have changed things elsewhere.
    connect(&view, &QWindow::activeChanged, this, [this] {
        if (isOpen() && this->view()->isActive()) {
            m_deps.integrations.refresh();
        }
    });
    connect(view.rootObject(), SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
}

void SettingsWindow::leave(View& view) {
    m_page = static_cast<Page>(view.rootObject()->property("page").toInt());
}

}  // namespace vorn
