#include "ui/views/dashboard_content.hpp"

namespace vorn {

DashboardContent::DashboardContent(UsageModel& model)
    : m_steer(model), m_freshness(model), m_sessionsLeft(model), m_panels(model) {}

QVariantMap DashboardContent::properties() {
    return {{"steer", QVariant::fromValue(&m_steer)},
            {"freshness", QVariant::fromValue(&m_freshness)},
            {"sessionsLeft", QVariant::fromValue(&m_sessionsLeft)},
            {"panels", QVariant::fromValue(&m_panels)}};
}

}  // namespace vorn
