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

/// The window with what it shows.
class DashboardWindow::Content : public View {
public:
    Content(ViewEngine::Hold hold, UsageModel& model) : View(std::move(hold)), m_content(model) {
        setTitle("Dashboard");
        setResizeMode(SizeRootObjectToView);
        setInitialProperties(m_content.properties());
        setSource(QUrl(kViewUrl));
    }
    ~Content() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    DashboardContent m_content;
};

DashboardWindow::DashboardWindow(UsageModel& model, ViewEngine& engine, WindowPlaceStore place, QObject* parent)
    : ViewWindow(engine, std::move(place), parent), m_model(model) {}

DashboardWindow::~DashboardWindow() {
    discardViews();
}

void DashboardWindow::setHasSettings(bool has) {
    m_hasSettings = has;
    if (isOpen()) {
        view()->rootObject()->setProperty("hasSettings", has);
    }
}

std::unique_ptr<ViewWindow::View> DashboardWindow::makeView(ViewEngine::Hold hold) {
    return std::make_unique<Content>(std::move(hold), m_model);
}

ViewWindow::Sizes DashboardWindow::sizesFor(const QQuickItem& /*root*/) const {
    return {.usual = kSize, .least = kLeastSize};
}

void DashboardWindow::prepare(View& view) {
    setHasSettings(m_hasSettings);
    const QQuickItem* const root = view.rootObject();
    connect(root, SIGNAL(refreshRequested()), this, SIGNAL(refreshRequested()));
    connect(root, SIGNAL(settingsRequested()), this, SIGNAL(settingsRequested()));
    connect(root, SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
    connect(root, SIGNAL(exportRequested(QString, QString)), this, SIGNAL(exportRequested(QString, QString)));
}

}  // namespace vorn
