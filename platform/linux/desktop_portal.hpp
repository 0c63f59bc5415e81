#pragma once

#include <QString>

/// Where desktops answer what programs may ask of any of them.
namespace vorn::portal {

inline const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

}  // namespace vorn::portal
