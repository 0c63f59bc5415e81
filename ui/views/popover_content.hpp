#pragma once

#include <QVariantMap>

#include "ui/views/freshness_presenter.hpp"
#include "ui/views/steer_presenter.hpp"
#include "ui/views/window_list_model.hpp"

namespace vorn {

/// Everything that the popover shows, for a window or a picture of one.
class PopoverContent {
public:
    /// `model` must outlive it.
    explicit PopoverContent(UsageModel& model) : m_steer(model), m_windows(model), m_freshness(model) {}

    /// The view's initial properties; they point into this object.
    [[nodiscard]] QVariantMap properties() {
        return {{"steer", QVariant::fromValue(&m_steer)},
                {"windows", QVariant::fromValue(&m_windows)},
                {"freshness", QVariant::fromValue(&m_freshness)}};
    }
    [[nodiscard]] WindowListModel& windows() { return m_windows; }

private:
    SteerPresenter m_steer;
    WindowListModel m_windows;
    FreshnessPresenter m_freshness;
};

}  // namespace vorn
