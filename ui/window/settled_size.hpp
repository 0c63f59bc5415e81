#pragma once

#include <QSize>

class QQuickItem;

namespace vorn {

/// The size that the view wants once everything in it is laid out, which otherwise happens only when it is drawn: a
/// window that is made in this size need not change it before people's eyes.
QSize settledSize(QQuickItem& view);

}  // namespace vorn
