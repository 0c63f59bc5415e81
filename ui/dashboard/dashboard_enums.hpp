#pragma once

#include <QObject>

#include <QtQml/qqmlregistration.h>

#include "core/data/planned_reset.hpp"

/// What people choose between in the dashboard, as QML can name it.

namespace vorn::PeriodForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Period)

/// How far back from now.
enum Period : int { FiveHours, Day, Week };
Q_ENUM_NS(Period)

inline Seconds lengthOf(Period period) {
    using namespace std::chrono_literals;
    return period == FiveHours ? 5h : period == Day ? 24h : 7 * 24h;
}

}  // namespace vorn::PeriodForViews

namespace vorn::ScopeForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Scope)

/// `PlannedReset::Scope`, in its order.
enum Scope : int { All, Session, Week };
Q_ENUM_NS(Scope)

inline PlannedReset::Scope toScope(Scope scope) {
    return static_cast<PlannedReset::Scope>(scope);
}

}  // namespace vorn::ScopeForViews
