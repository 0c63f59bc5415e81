#include "model/history_keeper.hpp"

#include <utility>

#include "core/analysis/outcomes.hpp"
#include "model/background_queue.hpp"

namespace vorn {

struct HistoryKeeper::Content {
    std::vector<HistorySample> samples;
    HistoryIndex index;
};

HistoryKeeper::HistoryKeeper(std::unique_ptr<HistoryStore> store, std::optional<OutcomeStore> outcomes,
                             BackgroundQueue& disk)
    : m_outcomes(std::move(outcomes)), m_store(std::move(store)), m_disk(disk) {}

HistoryKeeper::Content HistoryKeeper::read(HistoryStore& store) {
    Content content{.samples = store.all(), .index = {}};
    content.index.update(content.samples);
    return content;
}

void HistoryKeeper::load(const std::function<void()>& done) {
    if (std::exchange(m_isLoading, true)) {
        return;
    }
    const auto finish = [this, done](const std::shared_ptr<Content>& content) {
        if (!m_isDetached) {
            m_isLoaded = true;
            take(std::move(*content));
            done();
        }
    };
    const bool isRunning = m_disk.run([store = m_store, finish] {
        const auto content = std::make_shared<Content>(read(*store));
        return [content, finish] {
            finish(content);
        };
    });
    if (!isRunning) {
        finish(std::make_shared<Content>(read(*m_store)));
    }
}

void HistoryKeeper::take(Content content) {
    m_samples = std::move(content.samples);
    m_index = std::move(content.index);
}

void HistoryKeeper::replace(std::vector<HistorySample> samples) {
    m_isDetached = true;
    take({.samples = std::move(samples), .index = {}});
    m_index.update(m_samples);
}

bool HistoryKeeper::add(std::span<const UsageWindow> windows, Instant now, HistoryStore::Stored stored) {
    const std::vector<HistorySample> added = m_store->add(windows, now, stored);
    m_samples.insert(m_samples.end(), added.begin(), added.end());
    m_index.update(m_samples);
    if (stored == HistoryStore::Stored::notYet && (!added.empty() || m_isUnsaved)) {
        flush(now);
    }
    return !added.empty();
}

void HistoryKeeper::flush(Instant now) {
    if (m_isFlushQueued->exchange(true)) {
        return;  // that one will find what is new
    }
    const bool isRunning = m_disk.run([this, store = m_store, outcomes = m_outcomes, isQueued = m_isFlushQueued, now] {
        *isQueued = false;
        if (outcomes) {  // before anything is pruned
            outcomes->add(VornEngine::outcomes(store->all(), now), now);
        }
        const HistoryStore::Flushed flushed = store->flush(now);
        return [this, flushed] {
            finishFlush(flushed);
        };
    });
    if (!isRunning) {
        *m_isFlushQueued = false;
        m_isUnsaved = true;
    }
}

void HistoryKeeper::finishFlush(HistoryStore::Flushed flushed) {
    const bool wasUnsaved = std::exchange(m_isUnsaved, !flushed.isSaved);
    if (flushed.isRewritten && !m_isDetached) {
        // About once a day, and then a short history: what was too old is gone.
        take(read(*m_store));
    }
    if (onFlushed && (flushed.isRewritten || wasUnsaved != m_isUnsaved)) {
        onFlushed();
    }
}

}  // namespace vorn
