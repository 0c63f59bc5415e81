#include "model/notifier.hpp"

#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "model/preferences/preferences.hpp"
#include "platform/notification_center.hpp"

namespace vorn {

namespace {

using namespace std::chrono_literals;

/// Below this, a window that was tight has been reset and not merely relaxed.
constexpr double kFreshPercent = 5;
/// Readings of one reset time jitter by a few minutes, two resets of one window lie hours apart.
constexpr Seconds kTagStep = 10min;

/// How near a limit has to be for a warning.
Seconds warningHorizon(const WindowKind& kind) {
    return kind.isSession() ? 2h : 24h;
}

/// "risk:week@1": what the desktop knows the notice by.
std::string identifier(Notifier::Event event, const WindowKind& kind, double number) {
    constexpr std::array kNames{"risk", "limited", "reset", "moved", "credits"};
    return fmt::format("{}:{}@{:.0f}", kNames.at(static_cast<std::size_t>(event)), kind.key(), number);
}

double instanceNumber(const UsageWindow& window) {
    return window.resetsAt ? std::round(window.resetsAt->time_since_epoch() / kTagStep) : 0;
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

void Notifier::evaluate(const Answer& answer, const Preferences& preferences) {
    if (!answer.isJudged || answer.isDemo) {
        return;
    }
    evaluate(answer.assessments(), preferences, answer.now);
    evaluateCredits(answer, preferences);
    for (const Outcome& moved : answer.moved) {
        if (const WindowAssessment* const assessment = answer.find(moved.kind);
            preferences.notifyReset() && assessment) {
            send(Event::moved, assessment->window, Format::movedNotice(moved, answer.now));
        }
    }
}

/// A limit that is reached ends nothing where credits take over: whoever works on should know that it costs.
void Notifier::evaluateCredits(const Answer& answer, const Preferences& preferences) {
    const auto& credits = answer.others.credits;
    if (!credits) {
        return;
    }
    const auto before = std::exchange(m_lastSpent, credits->spent);
    const WindowAssessment* const urgent = answer.urgentAssessment();
    if (preferences.notifyLimited() && credits->isEnabled && before && credits->spent > *before && urgent != nullptr &&
        urgent->status == VornStatus::limited) {
        send(Event::credits, urgent->window, Format::creditsNotice(urgent->window, *credits));
    }
}

void Notifier::evaluate(std::span<const WindowAssessment> assessments, const Preferences& preferences, Instant now) {
    for (const WindowAssessment& assessment : assessments) {
        evaluateOne(assessment, preferences, now);
    }
}

void Notifier::evaluateOne(const WindowAssessment& assessment, const Preferences& preferences, Instant now) {
    const UsageWindow& window = assessment.window;
    const auto [last, isFirst] = m_lastStatus.try_emplace(window.kind, assessment.status);
    const VornStatus previous = std::exchange(last->second, assessment.status);
    const bool wasTight = !isFirst && (previous == VornStatus::atRisk || previous == VornStatus::limited);
    if (window.resetsAt) {
        // A window has no reset time just after a reset, so all its resets share one identifier. With a reset time the
        // window has begun anew, and its next reset is another one.
        m_sent.erase({Event::reset, window.kind, 0});
    }

    switch (assessment.status) {
        case VornStatus::atRisk:
            if (const auto left = assessment.timeToLimit;
                preferences.notifyAtRisk() && left && *left < warningHorizon(window.kind)) {
                send(Event::risk, window, Format::warningNotice(window, *left, now));
            }
            break;
        case VornStatus::limited:
            if (preferences.notifyLimited()) {
                send(Event::limited, window, Format::limitNotice(window, now));
            }
            break;
        case VornStatus::comfortable:
            if (preferences.notifyReset() && wasTight && window.usedPercent < kFreshPercent) {
                send(Event::reset, window, Format::resetNotice(window));
            }
            break;
        case VornStatus::watch:
            break;
    }
}

void Notifier::send(Event event, const UsageWindow& window, const Format::NoticeText& text) {
    if (m_center == nullptr || !isAuthorized()) {
        return;
    }
    const double number = instanceNumber(window);
    // The sources give one reset time with and without its seconds, which may fall on both sides of a rounding edge.
    for (const double near : {number - 1, number, number + 1}) {
        if (m_sent.contains({event, window.kind, near})) {
            return;
        }
    }
    m_sent.insert({event, window.kind, number});
    m_center->post({.id = toQString(identifier(event, window.kind, number)),
                    .title = toQString(text.title),
                    .body = toQString(text.body)});
}

}  // namespace vorn
