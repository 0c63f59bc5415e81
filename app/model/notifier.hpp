#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>

#include "core/analysis/window_assessment.hpp"

namespace vorn {

class NotificationCenter;
class Preferences;

/// Tells the user once per window instance that a limit is near, reached, or has reset. Main thread only.
class Notifier {
public:
    /// `center`: null where the system has none; must outlive the notifier.
    explicit Notifier(NotificationCenter* center) : m_center(center) {}

    /// Asks for permission; `onGranted` runs on the main thread each time it is given.
    void requestAuthorization(std::function<void()> onGranted);
    [[nodiscard]] bool isAuthorized() const { return m_authorized; }

    /// Posts what is due. To be called with every new set of assessments.
    void evaluate(std::span<const WindowAssessment> assessments, const Preferences& preferences, Instant now);

private:
    NotificationCenter* m_center;
    std::set<std::string> m_sent;                    ///< Identifiers of the notices posted in this run.
    std::map<std::string, VornStatus> m_lastStatus;  ///< By `WindowKind::key()`.
    bool m_authorized = false;
};

}  // namespace vorn
