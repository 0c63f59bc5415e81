#include "ui/views/breakdown_presenter.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/model/usage_model.hpp"
#include "ui/format/format.hpp"
#include "ui/views/activity_presenter.hpp"
#include "ui/views/left_to_right.hpp"
#include "ui/views/variants.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostProjects = 6;
constexpr std::size_t kMostModels = 4;
constexpr std::size_t kMostPrinted = 5;

Seconds lengthOf(BreakdownPresenter::Period period) {
    return period == BreakdownPresenter::FiveHours ? 5h : period == BreakdownPresenter::Day ? 24h : 7 * 24h;
}

/// The rest is recognised by its place: a project may be called "Other", too.
std::vector<RankedShare> ranked(const std::vector<ActivitySummary::Slice>& slices, std::size_t limit) {
    std::vector<RankedShare> shares;
    shares.reserve(slices.size());
    for (const auto& slice : slices) {
        shares.push_back({.name = QString::fromStdString(slice.name),
                          .share = slice.share,
                          .text = leftToRight(Format::percent(slice.share * kLimitPercent)),
                          .isRest = shares.size() == limit});
    }
    return shares;
}

std::vector<RankedShare> ranked(const std::vector<UsageInsights::Share>& printed) {
    std::vector<RankedShare> shares;
    for (const auto& share : printed) {
        if (shares.size() == kMostPrinted) {
            shares.push_back({.name = QString("+%1 more").arg(printed.size() - kMostPrinted), .isRest = true});
            break;
        }
        const double part = std::isfinite(share.percent) ? share.percent / kLimitPercent : 0;
        shares.push_back({.name = QString::fromStdString(share.name),
                          .share = std::clamp(part, 0.0, 1.0),
                          .text = leftToRight(Format::percent(share.percent))});
    }
    return shares;
}

PrintedFinding split(const UsageInsights::Finding& finding) {
    const QString text = QString::fromStdString(finding.text);
    const qsizetype dot = text.indexOf(" · ");
    return {.percent = leftToRight(Format::percent(finding.percent)),
            .title = dot < 0 ? text : text.left(dot).trimmed(),
            .detail = dot < 0 ? QString() : text.mid(dot + 3).trimmed()};
}

QString headingOf(const UsageInsights::Period& period) {
    QString heading = "Claude Code";
    const auto add = [&heading](std::optional<std::int64_t> count, const char* what) {
        if (count) {
            heading += QString(" · %1 %2%3").arg(*count).arg(what).arg(*count == 1 ? "" : "s");
        }
    };
    add(period.requests, "request");
    add(period.sessions, "session");
    return heading;
}

}  // namespace

BreakdownPresenter::Measured measuredBreakdown(const ActivitySummary& activity, Instant since) {
    BreakdownPresenter::Measured measured{.projects = ranked(activity.projects(since, kMostProjects), kMostProjects),
                                          .models = ranked(activity.models(since, kMostModels), kMostModels)};
    if (measured.projects.empty()) {
        measured.nothing = "No replies in this time.";
    }
    return measured;
}

BreakdownPresenter::Printed printedBreakdown(const UsageInsights* insights, int period) {
    BreakdownPresenter::Printed printed{.heading = "Claude Code"};
    if (!insights || insights->periods.empty()) {
        printed.nothing = "Claude Code printed no breakdown with its limits.";
        return printed;
    }
    for (const auto& each : insights->periods) {
        printed.periods << QString::fromStdString(each.label);
    }
    printed.period = std::clamp(period, 0, static_cast<int>(insights->periods.size()) - 1);
    const UsageInsights::Period& shown = insights->periods[static_cast<std::size_t>(printed.period)];
    printed.heading = headingOf(shown);
    std::ranges::transform(shown.findings, std::back_inserter(printed.findings), split);
    printed.skills = ranked(shown.topSkills);
    printed.subagents = ranked(shown.topSubagents);
    if (printed.findings.empty() && printed.skills.empty() && printed.subagents.empty()) {
        printed.nothing = "Claude Code printed no findings for this period.";
    }
    return printed;
}

BreakdownPresenter::BreakdownPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &BreakdownPresenter::update);
    connect(&model, &UsageModel::insightsChanged, this, &BreakdownPresenter::update);
    connect(&model, &UsageModel::activityChanged, this, &BreakdownPresenter::activityChanged);
    update();
}

void BreakdownPresenter::activityChanged() {
    m_measuredAt.reset();
    update();
}

void BreakdownPresenter::setPeriod(int period) {
    const auto wanted = static_cast<Period>(std::clamp<int>(period, FiveHours, Week));
    if (std::exchange(m_period, wanted) != wanted) {
        m_measuredAt.reset();
        update();
        emit changed();
    }
}

void BreakdownPresenter::setPrintedPeriod(int period) {
    m_wantedPrinted = period;
    update();
}

QVariantList BreakdownPresenter::projects() const {
    return variants(m_measured.projects);
}
QVariantList BreakdownPresenter::models() const {
    return variants(m_measured.models);
}
QVariantList BreakdownPresenter::findings() const {
    return variants(m_printed.findings);
}
QVariantList BreakdownPresenter::skills() const {
    return variants(m_printed.skills);
}
QVariantList BreakdownPresenter::subagents() const {
    return variants(m_printed.subagents);
}

void BreakdownPresenter::setShown(bool shown) {
    if (std::exchange(m_isShown, shown) != shown) {
        emit isShownChanged();
        update();
    }
}

void BreakdownPresenter::update() {
    if (!m_isShown) {
        return;
    }
    const Instant now = m_model.now();
    Measured measured = m_measured;
    if (const QString nothing = whyNoActivity(m_model); !nothing.isEmpty()) {
        measured = {.nothing = nothing};
        m_measuredAt.reset();
    } else if (!m_measuredAt || now < *m_measuredAt || now - *m_measuredAt >= kSlide) {
        measured = measuredBreakdown(m_model.activity(), now - lengthOf(m_period));
        m_measuredAt = now;
    }
    const auto& insights = m_model.insights();
    Printed printed = printedBreakdown(insights ? &*insights : nullptr, m_wantedPrinted);
    if (measured != m_measured || printed != m_printed) {
        m_measured = std::move(measured);
        m_printed = std::move(printed);
        emit changed();
    }
}

}  // namespace vorn
