#include "model/activity_keeper.hpp"

#include <utility>

namespace vorn {

void ActivityKeeper::scan(Instant now, std::function<void()> done) {
    if (m_isScanning || !m_source) {
        return;
    }
    m_lastScan = now;
    m_isScanning = true;
    m_source->scan(now, [this, done = std::move(done)](ActivitySource::Answer answer) {
        m_isScanning = false;
        if (answer || !m_summary) {
            m_summary = std::make_shared<const ActivitySummary>(std::move(answer).value_or(ActivitySummary()));
            done();
        }
    });
}

void ActivityKeeper::replace(ActivitySummary summary) {
    m_source.reset();
    m_summary = std::make_shared<const ActivitySummary>(std::move(summary));
}

}  // namespace vorn
