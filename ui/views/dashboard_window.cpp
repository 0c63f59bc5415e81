#include "ui/views/dashboard_window.hpp"

#include <QEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

#include "ui/views/dashboard_content.hpp"

namespace vorn {
namespace {

constexpr const char* kViewUrl = "qrc:/qt/qml/Vorn/DashboardView.qml";
constexpr QSize kSize{1000, 720};
constexpr QSize kLeastSize{560, 420};

}  // namespace

/// The window with what it shows; holds the engine as long as it exists.
class DashboardWindow::View : public QQuickView {
public:
    View(ViewEngine::Hold hold, UsageModel& model)
        : QQuickView(hold.get(), nullptr), m_hold(std::move(hold)), m_content(model) {
        setTitle("Dashboard");
        setMinimumSize(kLeastSize);
        setResizeMode(SizeRootObjectToView);
        setInitialProperties(m_content.properties());
        setSource(QUrl(kViewUrl));
    }
    ~View() override {
        // What is shown goes before what it shows.
        setSource({});
    }

private:
    ViewEngine::Hold m_hold;
    DashboardContent m_content;
};

DashboardWindow::DashboardWindow(UsageModel& model, ViewEngine& engine, WindowPlaceStore place, QObject* parent)
    : QObject(parent), m_model(model), m_engine(engine), m_place(std::move(place)) {
    connect(&engine, &ViewEngine::aboutToUnload, this, [this] {
        m_view.reset();
        m_closing.clear();
    });
}

DashboardWindow::~DashboardWindow() = default;

void DashboardWindow::open() {
    const bool wasOpen = isOpen();
    if (!wasOpen && !createView()) {
        return;
    }
    if (m_view->windowStates().testFlag(Qt::WindowMinimized)) {
        m_view->setWindowStates(m_view->windowStates() & ~Qt::WindowMinimized);
    }
    m_view->setVisible(true);
    m_view->raise();
    m_view->requestActivate();
    if (!wasOpen) {
        emit opened();
    }
}

void DashboardWindow::close() {
    if (!m_view) {
        return;
    }
    m_view->removeEventFilter(this);
    rememberPlace();
    m_view->hide();
    // It may be what called.
    m_closing.push_back(std::move(m_view));
    QMetaObject::invokeMethod(
        this, [this] { m_closing.clear(); }, Qt::QueuedConnection);
    emit closed();
}

bool DashboardWindow::isOpen() const {
    return m_view != nullptr;
}

void DashboardWindow::setHasSettings(bool has) {
    m_hasSettings = has;
    if (m_view) {
        m_view->rootObject()->setProperty("hasSettings", has);
    }
}

bool DashboardWindow::createView() {
    m_view = std::make_unique<View>(m_engine.hold(), m_model);
    if (!m_view->rootObject()) {
        // Parts of Qt are not installed; the view has told which.
        m_view.reset();
        return false;
    }
    restorePlace(*m_view, m_place.load ? m_place.load() : WindowPlace{}, kSize);
    m_view->installEventFilter(this);
    setHasSettings(m_hasSettings);
    const QQuickItem* const root = m_view->rootObject();
    connect(root, SIGNAL(closeRequested()), this, SLOT(close()));
    connect(root, SIGNAL(refreshRequested()), this, SIGNAL(refreshRequested()));
    connect(root, SIGNAL(settingsRequested()), this, SIGNAL(settingsRequested()));
    connect(root, SIGNAL(chooseClaudeRequested()), this, SIGNAL(chooseClaudeRequested()));
    connect(root, SIGNAL(exportRequested(QString, QString)), this, SIGNAL(exportRequested(QString, QString)));
    return true;
}

void DashboardWindow::rememberPlace() const {
    if (m_place.save) {
        m_place.save(placeOf(*m_view, m_place.load ? m_place.load() : WindowPlace{}));
    }
}

bool DashboardWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close && watched == m_view.get()) {
        close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vorn
