#include "ui/views/freshness_presenter.hpp"

#include <utility>

#include "app/model/usage_model.hpp"
#include "core/sources/probe_error.hpp"
#include "ui/format/format.hpp"
#include "ui/views/left_to_right.hpp"

namespace vorn {
namespace {

using Content = FreshnessPresenter::Content;

QString sourceName(DataSource source) {
    return source == DataSource::statusLine ? "status line" : "claude /usage";
}

PhaseForViews::Phase phaseOf(const UsageModel& model) {
    switch (model.phase().kind) {
        case UsageModel::Phase::Kind::starting:
            return PhaseForViews::Starting;
        case UsageModel::Phase::Kind::failed:
            return PhaseForViews::Failed;
        case UsageModel::Phase::Kind::ready:
            break;
    }
    return model.assessments().empty() ? PhaseForViews::NoLimits : PhaseForViews::Ready;
}

void showPhase(const UsageModel& model, Content& content) {
    switch (content.phase) {
        case PhaseForViews::Starting:
            content.phaseTitle = "Reading your usage…";
            content.phaseText = "The first answer takes a few seconds.";
            return;
        case PhaseForViews::Failed: {
            const std::string& message = model.phase().message;
            content.phaseTitle = "No reading yet";
            content.phaseText = QString::fromStdString(message).trimmed();
            content.needsClaude = message == ProbeError(ProbeError::Kind::claudeNotFound).what();
            const QString advice = QString::fromStdString(ProbeError::adviceFor(message));
            if (!advice.isEmpty()) {
                // What to do is worth more than the rest of the client's own output.
                content.phaseText = content.phaseText.section('\n', 0, 0) + "\n\n" + advice;
            }
            return;
        }
        case PhaseForViews::NoLimits:
            content.phaseTitle = "Connected, no limits yet";
            content.phaseText = "Claude Code reports them after the first reply of a session.";
            return;
        case PhaseForViews::Ready:
            return;
    }
}

QString updatedText(const UsageModel& model) {
    const auto observed = model.state().lastObservedAt();
    if (!observed) {
        return {};
    }
    const bool isLine = model.state().lastObserved(DataSource::statusLine) == observed;
    return "Updated " + leftToRight(Format::clock(*observed, model.now())) + " · " +
           sourceName(isLine ? DataSource::statusLine : DataSource::usageCommand);
}

QString freshnessText(const UsageModel& model, PhaseForViews::Phase phase) {
    if (model.isProbing()) {
        return "Asking claude /usage…";
    }
    if (model.isDemo()) {
        return "Demonstration, invented figures";
    }
    if (phase == PhaseForViews::Ready) {
        return updatedText(model);
    }
    if (!model.lastProbeAt()) {
        return {};
    }
    return "Checked " + leftToRight(Format::clock(*model.lastProbeAt(), model.now())) + " · " +
           sourceName(DataSource::usageCommand);
}

/// Whether the status line has told more since the probe failed.
bool isCurrentAnyway(const UsageModel& model) {
    const auto line = model.state().lastObserved(DataSource::statusLine);
    return line && model.lastProbeAt() && *line >= *model.lastProbeAt();
}

void showProbeError(const UsageModel& model, const std::string& error, Content& content) {
    // What stands below the first line is the client's own output: too much for a note.
    content.problem = QString::fromStdString(error).trimmed().section('\n', 0, 0);
    content.remedy = QString::fromStdString(ProbeError::adviceFor(error));
    content.canRetry = true;
    if (content.remedy.isEmpty()) {
        content.remedy = isCurrentAnyway(model) ? "Claude Code's status line keeps the figures current."
                                                : "The last figures stay. Vorn asks again by itself.";
    }
}

void showProblem(const UsageModel& model, Content& content) {
    if (model.lastProbeError() && content.phase != PhaseForViews::Failed) {
        showProbeError(model, *model.lastProbeError(), content);
    } else if (model.storageProblem()) {
        content.problem = QString::fromStdString(*model.storageProblem());
    }
}

}  // namespace

FreshnessPresenter::Content freshnessContent(const UsageModel& model) {
    Content content{.phase = phaseOf(model), .isProbing = model.isProbing()};
    showPhase(model, content);
    content.text = freshnessText(model, content.phase);
    showProblem(model, content);
    return content;
}

FreshnessPresenter::FreshnessPresenter(UsageModel& model, QObject* parent) : QObject(parent), m_model(model) {
    connect(&model, &UsageModel::changed, this, &FreshnessPresenter::update);
    connect(&model, &UsageModel::isProbingChanged, this, &FreshnessPresenter::update);
    connect(&model, &UsageModel::phaseChanged, this, &FreshnessPresenter::update);
    connect(&model, &UsageModel::lastProbeErrorChanged, this, &FreshnessPresenter::update);
    connect(&model, &UsageModel::storageProblemChanged, this, &FreshnessPresenter::update);
    update();
}

void FreshnessPresenter::update() {
    auto content = freshnessContent(m_model);
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
