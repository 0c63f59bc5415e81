#include "ui/settings/claude_presenter.hpp"

#include <utility>

#include "model/integrations.hpp"
#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"

namespace vorn {

ClaudePresenter::ClaudePresenter(const Sources& sources, QObject* parent) : QObject(parent), m_sources(sources) {
    connect(&sources.model, &UsageModel::changed, this, &ClaudePresenter::update);
    connect(&sources.integrations, &Integrations::changed, this, &ClaudePresenter::update);
    connect(&sources.finder, &ClaudeFinder::changed, this, &ClaudePresenter::update);
    connect(&sources.preferences, &Preferences::claudePathOverrideChanged, this, &ClaudePresenter::find);
    connect(&sources.preferences, &Preferences::useLocalActivityChanged, this, &ClaudePresenter::update);
    find();
    update();
}

void ClaudePresenter::find() {
    if (!m_sources.model.answer().isDemo) {
        m_sources.finder.find(m_sources.preferences.claudePathOverride());
    }
}

void ClaudePresenter::check() {
    m_sources.model.probe();
    find();
}

void ClaudePresenter::clearChoice() {
    m_sources.preferences.setClaudePathOverride({});
}

void ClaudePresenter::connectLine() {
    m_sources.integrations.connectStatusLine();
}

void ClaudePresenter::disconnectLine() {
    m_sources.integrations.disconnectStatusLine();
}

void ClaudePresenter::update() {
    const Answer& answer = m_sources.model.answer();
    if (std::exchange(m_counted, answer.activity) != answer.activity) {
        m_count = activityCount(answer.activity.get());
    }
    const ClaudeContent content = claudeContent({.answer = answer,
                                                 .preferences = m_sources.preferences,
                                                 .integrations = m_sources.integrations,
                                                 .finding = m_sources.finder.finding(),
                                                 .activity = m_count});
    if (std::exchange(m_content, content) != content) {
        emit changed();
    }
}

}  // namespace vorn
