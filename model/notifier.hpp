#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <tuple>

#include "core/analysis/answer.hpp"
#include "core/wording/notice_text.hpp"

namespace vorn {

class NotificationCenter;
class Preferences;

/// Tells the user once per window instance that a limit is near, reached, or has reset. Main thread only.
class Notifier {
public:
    enum class Event : std::uint8_t { risk, limited, reset, moved, credits };

    /// `center`: null where the system has none; must outlive the notifier.
    explicit Notifier(NotificationCenter* center) : m_center(center) {}
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    /// Asks for permission; `onGranted` runs on the main thread each time it is given.
    void requestAuthorization(std::function<void()> onGranted);
    [[nodiscard]] bool isAuthorized() const { return *m_authorized; }

    /// Posts what is due; to be called with every new answer. Does nothing for one that is not judged yet, and for a
    /// demonstration, whose figures nobody is to take for real.
    void evaluate(const Answer& answer, const Preferences& preferences);
    /// Posts what is due for these assessments, which may all be announced.
    void evaluate(std::span<const WindowAssessment> assessments, const Preferences& preferences, Instant now);

private:
    void evaluateCredits(const Answer& answer, const Preferences& preferences);
    void evaluateOne(const WindowAssessment& assessment, const Preferences& preferences, Instant now);
    /// Posts the notice unless the same event was posted about this instance of the window.
    void send(Event event, const UsageWindow& window, const Format::NoticeText& text);

    NotificationCenter* m_center;
    /// What was posted in this run; the number is that of the window's instance.
    std::set<std::tuple<Event, WindowKind, double>> m_sent;
    std::map<WindowKind, VornStatus> m_lastStatus;
    std::optional<double> m_lastSpent;  ///< Of the credits.
    /// Shared, so that an answer that comes after our end finds nobody.
    std::shared_ptr<bool> m_authorized = std::make_shared<bool>(false);
};

}  // namespace vorn
