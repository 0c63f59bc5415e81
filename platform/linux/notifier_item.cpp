#include "platform/linux/notifier_item.hpp"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <utility>

#include "platform/linux/bus_structure.hpp"

namespace vorn {

namespace {

const QString kItemPath = QStringLiteral("/StatusNotifierItem");
const QString kMenuPath = QStringLiteral("/MenuBar");

void registerTypes() {
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<TrayPixmaps>();
    qDBusRegisterMetaType<TrayToolTip>();
}

/// Qt keeps connections by name, and a name may only be taken again after its connection has gone.
QDBusConnection newConnection() {
    static int count = 0;
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("vorn-cell-%1").arg(++count));
}

TrayPixmap pixmapOf(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    TrayPixmap pixmap{.width = argb.width(), .height = argb.height(), .bytes = {}};
    pixmap.bytes.reserve(qsizetype{4} * argb.width() * argb.height());
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            const QRgb color = argb.pixel(x, y);
            for (const int part : {qAlpha(color), qRed(color), qGreen(color), qBlue(color)}) {
                pixmap.bytes.append(static_cast<char>(part));
            }
        }
    }
    return pixmap;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& out, const TrayPixmap& pixmap) {
    return putStructure(out, pixmap.width, pixmap.height, pixmap.bytes);
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayPixmap& pixmap) {
    return takeStructure(in, pixmap.width, pixmap.height, pixmap.bytes);
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayToolTip& toolTip) {
    return putStructure(out, toolTip.iconName, toolTip.icons, toolTip.title, toolTip.text);
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayToolTip& toolTip) {
    return takeStructure(in, toolTip.iconName, toolTip.icons, toolTip.title, toolTip.text);
}

NotifierItem::NotifierItem(QString id, QObject& menu) : m_id(std::move(id)), m_bus(newConnection()) {
    registerTypes();
    new NotifierItemAdaptor(*this);  // NOLINT(cppcoreguidelines-owning-memory): the item is its parent
    m_bus.registerObject(kItemPath, this, QDBusConnection::ExportAdaptors);
    m_bus.registerObject(kMenuPath, &menu, QDBusConnection::ExportAdaptors);
}

NotifierItem::~NotifierItem() {
    const QString name = m_bus.name();
    m_bus.unregisterObject(kItemPath);
    m_bus.unregisterObject(kMenuPath);
    QDBusConnection::disconnectFromBus(name);
}

void NotifierItem::enroll() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("RegisterStatusNotifierItem"));
    call << m_bus.baseService();
    call.setAutoStartService(false);
    m_bus.asyncCall(call);
}

void NotifierItem::setImages(const std::vector<QImage>& images) {
    m_pixmaps.clear();
    for (const QImage& image : images) {
        m_pixmaps.append(pixmapOf(image));
    }
    emit imagesChanged();
}

void NotifierItem::setToolTip(const QString& text) {
    if (std::exchange(m_toolTip, text) != text) {
        emit toolTipChanged();
    }
}

void NotifierItem::setShown(bool isShown) {
    if (std::exchange(m_isShown, isShown) != isShown) {
        emit statusChanged(status());
    }
}

QString NotifierItem::status() const {
    return m_isShown ? QStringLiteral("Active") : QStringLiteral("Passive");
}

NotifierItemAdaptor::NotifierItemAdaptor(NotifierItem& item) : QDBusAbstractAdaptor(&item), m_item(item) {
    connect(&item, &NotifierItem::imagesChanged, this, &NotifierItemAdaptor::NewIcon);
    connect(&item, &NotifierItem::toolTipChanged, this, &NotifierItemAdaptor::NewToolTip);
    connect(&item, &NotifierItem::statusChanged, this, &NotifierItemAdaptor::NewStatus);
}

QString NotifierItemAdaptor::title() const {
    return QGuiApplication::applicationDisplayName();
}

QDBusObjectPath NotifierItemAdaptor::menu() const {
    return QDBusObjectPath(kMenuPath);
}

TrayPixmaps NotifierItemAdaptor::iconPixmap() const {
    emit m_item.read();
    return m_item.pixmaps();
}

TrayToolTip NotifierItemAdaptor::toolTip() const {
    return {.iconName = {}, .icons = {}, .title = m_item.toolTip(), .text = {}};
}

void NotifierItemAdaptor::Activate(int /*x*/, int /*y*/) {
    emit m_item.activated();
}

// The middle button and the wheel mean nothing here, and hosts that have the menu's path open it themselves.
void NotifierItemAdaptor::SecondaryActivate(int /*x*/, int /*y*/) {}
void NotifierItemAdaptor::ContextMenu(int /*x*/, int /*y*/) {}
void NotifierItemAdaptor::Scroll(int /*delta*/, const QString& /*orientation*/) {}

}  // namespace vorn
