#pragma once

#include <QObject>

#include <QtQml/qqmlregistration.h>

#include "core/analysis/answer.hpp"

/// Enumerations as QML can name them: with capitals.

namespace vorn::StatusForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Status)

/// `VornStatus`, in its order; unknown while nothing may be concluded yet: then nothing has the colour of a status.
enum Status : int { Unknown = -1, Comfortable, Watch, AtRisk, Limited };
Q_ENUM_NS(Status)

inline Status from(VornStatus status) {
    return static_cast<Status>(status);
}

}  // namespace vorn::StatusForViews

namespace vorn::StageForViews {
Q_NAMESPACE
QML_NAMED_ELEMENT(Stage)

/// `Answer::Stage`, in its order: nothing yet, why there is nothing, that there are no limits, or the limits.
enum Stage : int { Starting, Failed, NoLimits, Ready };
Q_ENUM_NS(Stage)

inline Stage from(Answer::Stage stage) {
    return static_cast<Stage>(stage);
}

}  // namespace vorn::StageForViews
