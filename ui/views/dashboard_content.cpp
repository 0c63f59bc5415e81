#include "ui/views/dashboard_content.hpp"

namespace vorn {

DashboardContent::DashboardContent(UsageModel& model)
    : m_steer(model),
      m_freshness(model),
      m_panels(model),
      m_sessionWeek(model),
      m_resets(model),
      m_activity(model),
      m_breakdown(model) {}

QVariantMap DashboardContent::properties() {
    return {{"steer", QVariant::fromValue(&m_steer)},        {"freshness", QVariant::fromValue(&m_freshness)},
            {"panels", QVariant::fromValue(&m_panels)},      {"sessionWeek", QVariant::fromValue(&m_sessionWeek)},
            {"resets", QVariant::fromValue(&m_resets)},      {"activity", QVariant::fromValue(&m_activity)},
            {"breakdown", QVariant::fromValue(&m_breakdown)}};
}

}  // namespace vorn
