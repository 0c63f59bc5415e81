#pragma once

#include <QObject>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/vorn_status.hpp"

/// Enumerations as QML can name them: with capitals.

namespace vorn::StatusForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Status)

/// `VornStatus`, in its order.
enum Status : int { Comfortable, Watch, AtRisk, Limited };
Q_ENUM_NS(Status)

inline Status from(VornStatus status) {
    return static_cast<Status>(status);
}
inline VornStatus toStatus(Status status) {
    return static_cast<VornStatus>(status);
}

}  // namespace vorn::StatusForViews

namespace vorn::PhaseForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Phase)

/// What a window has to show: nothing yet, why there is nothing, that there are no limits, or the limits.
enum Phase : int { Starting, Failed, NoLimits, Ready };
Q_ENUM_NS(Phase)

}  // namespace vorn::PhaseForViews
