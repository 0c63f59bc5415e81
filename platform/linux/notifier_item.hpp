#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QImage>
#include <QObject>
#include <QString>
#include <vector>

namespace vorn {

/// An image as tray hosts want it: ARGB, big-endian, not premultiplied.
struct TrayPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using TrayPixmaps = QList<TrayPixmap>;
QDBusArgument& operator<<(QDBusArgument& out, const TrayPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayPixmap& pixmap);

struct TrayToolTip {
    QString iconName;
    TrayPixmaps icons;
    QString title;
    QString text;
};
QDBusArgument& operator<<(QDBusArgument& out, const TrayToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayToolTip& toolTip);

/// One tray cell as a StatusNotifierItem. It has a connection to the bus of its own, since hosts take a connection for
/// one item. What Qt offers for this gives every item of a program the same id, so that hosts, which order
/// by id, mix them up.
class NotifierItem : public QObject {
    Q_OBJECT

public:
    /// `id`: stable and different for each cell. `menu` answers for the context menu; it must outlive the item.
    NotifierItem(QString id, QObject& menu);
    ~NotifierItem() override;

    /// Tells the host's watcher of it. The host then asks for everything: `read`.
    void enroll();

    void setImages(const std::vector<QImage>& images);
    void setToolTip(const QString& text);
    /// Whether the host should show it; at first it should.
    void setShown(bool isShown);

    [[nodiscard]] const QString& id() const { return m_id; }
    [[nodiscard]] const TrayPixmaps& pixmaps() const { return m_pixmaps; }
    [[nodiscard]] const QString& toolTip() const { return m_toolTip; }
    [[nodiscard]] QString status() const;

signals:
    /// The host has asked for the image.
    void read();
    /// A click with the main button.
    void activated();
    void imagesChanged();
    void toolTipChanged();
    void statusChanged(const QString& status);

private:
    QString m_id;
    QDBusConnection m_bus;
    TrayPixmaps m_pixmaps;
    QString m_toolTip;
    bool m_isShown = true;
};

/// The interface that hosts call; named as they name things.
class NotifierItemAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString IconThemePath READ none)
    Q_PROPERTY(QString IconName READ none)
    Q_PROPERTY(vorn::TrayPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(vorn::TrayPixmaps OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(vorn::TrayPixmaps AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ none)
    Q_PROPERTY(vorn::TrayToolTip ToolTip READ toolTip)

public:
    explicit NotifierItemAdaptor(NotifierItem& item);

    [[nodiscard]] QString category() const { return QStringLiteral("ApplicationStatus"); }
    [[nodiscard]] QString id() const { return m_item.id(); }
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString status() const { return m_item.status(); }
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] QDBusObjectPath menu() const;
    [[nodiscard]] QString none() const { return {}; }
    [[nodiscard]] TrayPixmaps iconPixmap() const;
    [[nodiscard]] TrayPixmaps noPixmap() const { return {}; }
    [[nodiscard]] TrayToolTip toolTip() const;

public slots:
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);

signals:
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    NotifierItem& m_item;
};

}  // namespace vorn
