#include "ui/views/resets_presenter.hpp"

#include <algorithm>
#include <utility>

#include "app/model/usage_model.hpp"
#include "core/support/text.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/locale_time.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/uuid.hpp"
#include "ui/views/left_to_right.hpp"
#include "ui/views/variants.hpp"

namespace vorn {
namespace {

/// A note is a reminder; the plan's file is no place for a pasted book.
constexpr int kLongestNote = 200;

PlannedReset::Scope scopeAt(int index) {
    const auto last = static_cast<int>(PlannedReset::allScopes.size()) - 1;
    return PlannedReset::allScopes.at(static_cast<std::size_t>(std::clamp(index, 0, last)));
}

Instant suggestion(Instant now) {
    using namespace std::chrono_literals;
    const std::string zone = currentTimeZone();
    Calendar calendar(zone);
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

ResetsPresenter::Content resetsContent(const ResetPlan& plan, Instant now) {
    const std::string zone = currentTimeZone();
    ResetsPresenter::Content content{
        .banked = static_cast<int>(std::clamp<std::int64_t>(plan.banked, 0, ResetsPresenter::kMostBanked))};
    for (const PlannedReset& reset : plan.pruned(now).planned) {
        const bool isPast = reset.date <= now;
        QString detail = label(reset.scope);
        for (const QString& more :
             {QString::fromStdString(reset.note).simplified(), isPast ? QString("has passed") : QString()}) {
            detail += more.isEmpty() ? QString() : " · " + more;
        }
        content.resets.push_back({.id = QString::fromStdString(reset.id),
                                  .when = leftToRight(shortDate(reset.date, zone) + ", " + shortTime(reset.date, zone)),
                                  .detail = detail,
                                  .isPast = isPast});
    }
    return content;
}

ReadMoment readMoment(const TypedMoment& typed, Instant now) {
    const std::string zone = currentTimeZone();
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
    Calendar calendar(zone);
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

ResetsPresenter::ResetsPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &ResetsPresenter::update);
    connect(&model, &UsageModel::resetPlanChanged, this, &ResetsPresenter::update);
    m_content = resetsContent(model.resetPlan(), model.now());
}

QVariantList ResetsPresenter::resets() const {
    return variants(m_content.resets);
}

QStringList ResetsPresenter::scopes() {
    QStringList names;
    for (const PlannedReset::Scope scope : PlannedReset::allScopes) {
        names << label(scope);
    }
    return names;
}

QString ResetsPresenter::suggestedDate() const {
    return QString::fromStdString(typedDate(suggestion(m_model.now()), currentTimeZone()));
}

QString ResetsPresenter::suggestedTime() const {
    return QString::fromStdString(shortTime(suggestion(m_model.now()), currentTimeZone()));
}

bool ResetsPresenter::add(const QString& date, const QString& time, int scope, const QString& note) {
    const ReadMoment read = readMoment({.date = date, .time = time}, m_model.now());
    setProblem(read.problem);
    if (!read.moment) {
        return false;
    }
    // The text field lets pasted line ends and half of a surrogate pair through.
    const std::string tidy = repairUtf8(note.simplified().left(kLongestNote).toStdString());
    m_model.addPlannedReset({.id = randomUuid(), .date = *read.moment, .scope = scopeAt(scope), .note = tidy});
    return true;
}

void ResetsPresenter::forgetProblem() {
    setProblem({});
}

void ResetsPresenter::remove(const QString& id) {
    m_model.removePlannedReset(id.toStdString());
}

void ResetsPresenter::setBanked(int count) {
    m_model.setBankedResets(std::clamp(count, 0, kMostBanked));
}

void ResetsPresenter::redeem(int scope) {
    m_model.redeemReset(scopeAt(scope));
}

void ResetsPresenter::update() {
    auto content = resetsContent(m_model.resetPlan(), m_model.now());
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

void ResetsPresenter::setProblem(const ResetProblem& problem) {
    if (std::exchange(m_problem, problem) != problem) {
        emit problemChanged();
    }
}

}  // namespace vorn
