#pragma once

#include <QImage>
#include <QUrl>
#include <QVariantMap>

class QQmlEngine;

namespace vorn {

struct ViewPicture {
    QUrl view;               ///< The view's QML file.
    QVariantMap properties;  ///< Its initial properties.
    double pixelRatio = 1;   ///< Device pixels a point.
};

/// The view as it stands, without a window on any screen, in its implicit size and with its corners transparent. Null
/// when it cannot be loaded, of which the engine has then warned.
QImage pictureOf(QQmlEngine& engine, const ViewPicture& picture);

}  // namespace vorn
