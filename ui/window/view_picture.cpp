#include "ui/window/view_picture.hpp"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <memory>

#include "ui/window/settled_size.hpp"

namespace vorn {

QImage pictureOf(QQmlEngine& engine, const ViewPicture& picture) {
    QQmlComponent component(&engine, picture.view);
    // Qt 6.4 crashes on creating what it could not load.
    const std::unique_ptr<QObject> object(
        component.isReady() ? component.createWithInitialProperties(picture.properties) : nullptr);
    auto* const root = qobject_cast<QQuickItem*>(object.get());
    if (!root) {
        for (const QQmlError& error : component.errors()) {
            qWarning("%s", qPrintable(error.toString()));
        }
        return {};
    }
    QQuickRenderControl control;
    QQuickWindow window(&control);
    window.setColor(Qt::transparent);
    root->setParentItem(window.contentItem());
    const QSize size = settledSize(*root);
    root->setSize(size);
    window.setGeometry(QRect(QPoint(), size));
    // Charts draw themselves a moment after they were laid out.
    QCoreApplication::processEvents();

    QImage image(size * picture.pixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(picture.pixelRatio);
    image.fill(Qt::transparent);
    QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&image);
    target.setDevicePixelRatio(picture.pixelRatio);
    window.setRenderTarget(target);
    control.polishItems();
    control.beginFrame();
    control.sync();
    control.render();
    control.endFrame();
    return image;
}

}  // namespace vorn
