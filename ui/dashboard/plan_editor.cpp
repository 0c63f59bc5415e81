#include "ui/dashboard/plan_editor.hpp"

#include <algorithm>
#include <utility>

#include "core/support/text.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/uuid.hpp"
#include "model/usage_model.hpp"
#include "ui/controls/left_to_right.hpp"
#include "ui/dashboard/resets_content.hpp"

namespace vorn {
namespace {

/// A note is a reminder; the plan's file is no place for a pasted book.
constexpr int kLongestNote = 200;

Instant suggestion(Instant now) {
    using namespace std::chrono_literals;
    const TimeZone zone = currentTimeZone();
    const Calendar calendar(zone);
    const Instant tomorrow = calendar.addDays(now, 1).value_or(now + 24h);
    auto wall = calendar.wallTime(tomorrow);
    if (!wall) {
        return tomorrow;
    }
    ++wall->hour;
    wall->minute = 0;
    return calendar.instant(*wall).value_or(tomorrow);
}

}  // namespace

ReadMoment readMoment(const TypedMoment& typed, Instant now) {
    const TimeZone zone = currentTimeZone();
    const auto date = parseTypedDate(typed.date.toStdString(), zone);
    const auto time = parseTypedTime(typed.time.toStdString());
    ReadMoment read;
    if (!date) {
        read.problem.date = "Write the date like " + leftToRight(typedDate(suggestion(now), zone));
    }
    if (!time) {
        read.problem.time = "Write the time like " + leftToRight(shortTime(suggestion(now), zone));
    }
    if (!date || !time) {
        return read;
    }
    const Calendar calendar(zone);
    auto wall = calendar.wallTime(*date);
    if (wall) {
        wall->hour = 0;
        wall->minute = static_cast<int>(*time / std::chrono::minutes(1));
        read.moment = calendar.instant(*wall);
    }
    if (!read.moment || *read.moment <= now) {
        read.moment.reset();
        // Today it is the time that is wrong.
        (isSameDay(*date, now, zone) ? read.problem.time : read.problem.date) =
            "This has passed; a planned reset lies ahead";
    }
    return read;
}

PlanEditor::PlanEditor(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {}

QStringList PlanEditor::scopes() {
    QStringList names;
    for (const PlannedReset::Scope scope : PlannedReset::allScopes) {
        names << label(scope);
    }
    return names;
}

QString PlanEditor::suggestedDate() const {
    return QString::fromStdString(typedDate(suggestion(m_model.now()), currentTimeZone()));
}

QString PlanEditor::suggestedTime() const {
    return QString::fromStdString(shortTime(suggestion(m_model.now()), currentTimeZone()));
}

bool PlanEditor::add(const QString& date, const QString& time, ScopeForViews::Scope scope, const QString& note) {
    const ReadMoment read = readMoment({.date = date, .time = time}, m_model.now());
    setProblem(read.problem);
    if (!read.moment) {
        return false;
    }
    // The text field lets pasted line ends and half of a surrogate pair through.
    const std::string tidy = repairUtf8(note.simplified().left(kLongestNote).toStdString());
    m_model.addPlannedReset(
        {.id = randomUuid(), .date = *read.moment, .scope = ScopeForViews::toScope(scope), .note = tidy});
    return true;
}

void PlanEditor::forgetProblem() {
    setProblem({});
}

void PlanEditor::remove(const QString& id) {
    m_model.removePlannedReset(id.toStdString());
}

void PlanEditor::setBanked(int count) {
    m_model.setBankedResets(std::clamp(count, 0, ResetsContent::kMostBanked));
}

void PlanEditor::redeem(ScopeForViews::Scope scope) {
    m_model.redeemReset(ScopeForViews::toScope(scope));
}

void PlanEditor::setProblem(const ResetProblem& problem) {
    if (std::exchange(m_problem, problem) != problem) {
        emit problemChanged();
    }
}

}  // namespace vorn
