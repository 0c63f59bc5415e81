#include "app/model/notifier.hpp"

#include <cmath>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "app/model/preferences.hpp"
#include "platform/notification_center.hpp"
#include "ui/format/format.hpp"

namespace vorn {

namespace {

using namespace std::chrono_literals;

/// Below this, a window that was tight has been reset and not merely relaxed.
constexpr double kFreshPercent = 5;
/// Readings of one reset time jitter by a few minutes, two resets of one window lie hours apart.
constexpr Seconds kTagStep = 10min;
constexpr std::string_view kResetPrefix = "reset";

/// How near a limit has to be for a warning.
Seconds warningHorizon(const WindowKind& kind) {
    return kind.isSession() ? 2h : 24h;
}

std::string identifier(std::string_view prefix, const WindowKind& kind, double number) {
    return fmt::format("{}:{}@{:.0f}", prefix, kind.key(), number);
}

double instanceNumber(const UsageWindow& window) {
    return window.resetsAt ? std::round(window.resetsAt->time_since_epoch() / kTagStep) : 0;
}

std::string warningBody(const UsageWindow& window, Seconds timeToLimit, Instant now) {
    const auto limit = Format::clock(now + timeToLimit, now);
    auto body = fmt::format("At your current pace you'll hit the limit around {}.", limit);
    if (window.resetsAt) {
        body += fmt::format(" It resets at {}", Format::clock(*window.resetsAt, now));
    }
    return body;
}

std::string limitBody(const UsageWindow& window, Instant now) {
    return window.resetsAt ? fmt::format("Resets at {}", Format::clock(*window.resetsAt, now))
                           : "No reset time known yet";
}

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

void Notifier::requestAuthorization(std::function<void()> onGranted) {
    if (m_center == nullptr) {
        return;
    }
    m_center->requestAuthorization(
        [state = std::weak_ptr(m_authorized), onGranted = std::move(onGranted)](bool granted) {
            const auto authorized = state.lock();
            if (!authorized) {
                return;
            }
            *authorized = granted;
            if (granted && onGranted) {
                onGranted();
            }
        });
}

void Notifier::evaluate(std::span<const WindowAssessment> assessments, const Preferences& preferences, Instant now) {
    for (const WindowAssessment& assessment : assessments) {
        evaluateOne(assessment, preferences, now);
    }
}

void Notifier::evaluateOne(const WindowAssessment& assessment, const Preferences& preferences, Instant now) {
    const UsageWindow& window = assessment.window;
    const auto [last, isFirst] = m_lastStatus.try_emplace(window.kind.key(), assessment.status);
    const VornStatus previous = std::exchange(last->second, assessment.status);
    const bool wasTight = !isFirst && (previous == VornStatus::atRisk || previous == VornStatus::limited);
    if (window.resetsAt) {
        // A window has no reset time just after a reset, so all its resets share one identifier. With a reset time the
        // window has begun anew, and its next reset is another one.
        m_sent.erase(identifier(kResetPrefix, window.kind, 0));
    }

    const std::string title = window.kind.title();
    switch (assessment.status) {
        case VornStatus::atRisk:
            if (const auto left = assessment.timeToLimit;
                preferences.notifyAtRisk() && left && *left < warningHorizon(window.kind)) {
                send("risk", window, fmt::format("{}: limit in ~{}", title, Format::duration(*left)),
                     warningBody(window, *left, now));
            }
            break;
        case VornStatus::limited:
            if (preferences.notifyLimited()) {
                send("limited", window, title + " limit reached", limitBody(window, now));
            }
            break;
        case VornStatus::comfortable:
            if (preferences.notifyReset() && wasTight && window.usedPercent < kFreshPercent) {
                send(kResetPrefix, window, title + " reset", "Fresh window. You're good to go.");
            }
            break;
        case VornStatus::watch:
            break;
    }
}

void Notifier::send(std::string_view prefix, const UsageWindow& window, std::string_view title, std::string_view body) {
    if (m_center == nullptr || !isAuthorized()) {
        return;
    }
    const double number = instanceNumber(window);
    // The sources give one reset time with and without its seconds, which may fall on both sides of a rounding edge.
    for (const double near : {number - 1, number, number + 1}) {
        if (m_sent.contains(identifier(prefix, window.kind, near))) {
            return;
        }
    }
    const std::string id = identifier(prefix, window.kind, number);
    m_sent.insert(id);
    m_center->post({.id = toQString(id), .title = toQString(title), .body = toQString(body)});
}

}  // namespace vorn
