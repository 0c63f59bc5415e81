#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "core/analysis/window_assessment.hpp"

namespace vorn {

class NotificationCenter;
class Preferences;

/// Tells the user once per window instance that a limit is near, reached, or has reset. Main thread only.
class Notifier {
public:
    /// `center`: null where the system has none; must outlive the notifier.
    explicit Notifier(NotificationCenter* center) : m_center(center) {}
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    /// Asks for permission; `onGranted` runs on the main thread each time it is given.
    void requestAuthorization(std::function<void()> onGranted);
    [[nodiscard]] bool isAuthorized() const { return *m_authorized; }

    /// Posts what is due. To be called with every new set of assessments.
    void evaluate(std::span<const WindowAssessment> assessments, const Preferences& preferences, Instant now);

private:
    void evaluateOne(const WindowAssessment& assessment, const Preferences& preferences, Instant now);
    /// Posts it unless the same was posted about this instance of the window.
    void send(std::string_view prefix, const UsageWindow& window, std::string_view title, std::string_view body);

    NotificationCenter* m_center;
    std::set<std::string> m_sent;                    ///< Identifiers of the notices posted in this run.
    std::map<std::string, VornStatus> m_lastStatus;  ///< By `WindowKind::key()`.
    /// Shared, so that an answer that comes after our end finds nobody.
    std::shared_ptr<bool> m_authorized = std::make_shared<bool>(false);
};

}  // namespace vorn
