#include "core/data/history_sample.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <ostream>
#include <string_view>

namespace vorn {
namespace {

bool isCurrent(const HistorySample& sample, const WindowKind& kind, Instant now) {
    return sample.resetsAt ? *sample.resetsAt > now : now - sample.observedAt < kind.length();
}

}  // namespace

bool HistorySample::isFinite() const {
    return std::isfinite(usedPercent) && std::isfinite(secondsSince1970(observedAt)) &&
           std::isfinite(secondsSince1970(resetsAt.value_or(Instant{})));
}

std::vector<UsageWindow> newestCurrent(std::span<const HistorySample> samples, Instant now,
                                       std::span<const DataSource> sources) {
    std::map<std::string_view, const HistorySample*> newest;
    for (const HistorySample& sample : samples) {
        if (sample.observedAt <= now) {
            const HistorySample*& best = newest[sample.kindKey];
            best = best == nullptr || sample.observedAt >= best->observedAt ? &sample : best;
        }
    }
    std::vector<UsageWindow> windows;
    for (const auto& [key, sample] : newest) {
        if (const auto kind = sample->kind(); kind && isCurrent(*sample, *kind, now)) {
            const auto place = static_cast<std::size_t>(sample - samples.data());
            const DataSource source = sources.empty() ? DataSource::usageCommand : sources[place];
            windows.push_back({*kind, sample->usedPercent, sample->resetsAt, sample->observedAt, source});
        }
    }
    std::ranges::sort(windows, {}, &UsageWindow::kind);
    return windows;
}

void PrintTo(const HistorySample& sample, std::ostream* out) {
    *out << sample.kindKey << ' ' << sample.usedPercent << "% observed "
         << formatIso8601Milliseconds(sample.observedAt);
    if (sample.resetsAt) {
        *out << " resets " << formatIso8601Milliseconds(*sample.resetsAt);
    }
}

}  // namespace vorn
