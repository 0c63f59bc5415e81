#include "core/data/activity/activity_summary.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/support/text.hpp"

namespace vorn {
namespace {

constexpr double kSixtieths = 60;

std::vector<ActivitySummary::Slice> rank(const std::unordered_map<std::string, double>& sixtieths, std::size_t limit) {
    std::vector<std::pair<std::string, double>> ranked(sixtieths.begin(), sixtieths.end());
    std::ranges::sort(ranked, [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    double total = 0;
    for (const auto& [name, weight] : ranked) {
        total += weight;
    }
    std::vector<ActivitySummary::Slice> slices;
    if (!(total > 0)) {
        return slices;
    }
    double rest = 0;
    for (auto& [name, weight] : ranked) {
        if (slices.size() < limit) {
            slices.push_back({std::move(name), weight / kSixtieths, weight / total});
        } else {
            rest += weight;
        }
    }
    if (rest > 0) {
        slices.push_back({"Other", rest / kSixtieths, rest / total});
    }
    return slices;
}

bool isNumber(std::string_view piece) {
    return std::ranges::all_of(piece, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

ActivitySummary::ActivitySummary(std::vector<ActivityEvent> events, std::vector<RefusedTurn> refusals)
    : m_events(std::move(events)), m_refusals(std::move(refusals)) {
    std::ranges::sort(m_refusals);
    if (!std::ranges::is_sorted(m_events, {}, &ActivityEvent::timestamp)) {
        std::ranges::stable_sort(m_events, {}, &ActivityEvent::timestamp);
    }
    m_sixtiethsUpTo.reserve(m_events.size() + 1);
    m_sixtiethsUpTo.push_back(0);
    for (const ActivityEvent& event : m_events) {
        m_sixtiethsUpTo.push_back(m_sixtiethsUpTo.back() + event.tokens.weightSixtieths(event.model));
    }
}

std::optional<Instant> ActivitySummary::lastEventAt() const {
    return m_events.empty() ? std::nullopt : std::optional(m_events.back().timestamp);
}

/// Of the first event at or after `instant`.
std::size_t ActivitySummary::indexOf(Instant instant) const {
    const auto found = std::ranges::lower_bound(m_events, instant, {}, &ActivityEvent::timestamp);
    return static_cast<std::size_t>(found - m_events.begin());
}

std::span<const ActivityEvent> ActivitySummary::events(Instant since, Instant until) const {
    const std::size_t first = indexOf(since);
    const std::size_t last = indexOf(until);
    return first < last ? std::span(m_events).subspan(first, last - first) : std::span<const ActivityEvent>{};
}

double ActivitySummary::weight(Instant since, Instant until) const {
    const std::size_t first = indexOf(since);
    const std::size_t last = indexOf(until);
    return first < last ? (m_sixtiethsUpTo[last] - m_sixtiethsUpTo[first]) / kSixtieths : 0;
}

std::vector<ActivitySummary::Bucket> ActivitySummary::timeline(Instant from, Instant to, Seconds width) const {
    const double count = std::ceil((to - from) / width);
    if (!(to > from) || !(width > Seconds{0}) || !std::isfinite(secondsSince1970(from)) ||
        !(count >= 1 && count <= static_cast<double>(kMaximumBuckets))) {
        return {};
    }
    std::vector<Bucket> buckets(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        buckets[i].start = from + width * static_cast<double>(i);
    }
    std::size_t at = indexOf(from);
    for (const ActivityEvent& event : events(from, to)) {
        const auto index = static_cast<std::size_t>((event.timestamp - from) / width);
        if (index < buckets.size()) {
            buckets[index].weight += m_sixtiethsUpTo[at + 1] - m_sixtiethsUpTo[at];
        }
        ++at;
    }
    for (Bucket& bucket : buckets) {
        bucket.weight /= kSixtieths;
    }
    return buckets;
}

std::unordered_map<std::string_view, double> ActivitySummary::sixtiethsBy(SharedText ActivityEvent::*text,
                                                                          Instant since) const {
    std::unordered_map<std::string_view, double> weights;
    for (std::size_t i = indexOf(since); i < m_events.size(); ++i) {
        // These sums are exact, and weighing each event anew would take most of the time.
        weights[m_events[i].*text] += m_sixtiethsUpTo[i + 1] - m_sixtiethsUpTo[i];
    }
    return weights;
}

std::vector<ActivitySummary::Slice> ActivitySummary::projects(Instant since, std::size_t limit) const {
    std::unordered_map<std::string, double> byProject;
    for (const auto& [cwd, weight] : sixtiethsBy(&ActivityEvent::cwd, since)) {
        byProject[std::string(projectName(cwd))] += weight;
    }
    return rank(byProject, limit);
}

std::vector<ActivitySummary::Slice> ActivitySummary::models(Instant since, std::size_t limit) const {
    std::unordered_map<std::string, double> byFamily;
    for (const auto& [model, weight] : sixtiethsBy(&ActivityEvent::model, since)) {
        byFamily[modelFamily(model)] += weight;
    }
    return rank(byFamily, limit);
}

std::string ActivitySummary::modelFamily(std::string_view model) {
    const std::string lower = asciiLower(model);
    std::string_view rest = lower;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('-'), rest.size());
        const std::string_view piece = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        // An empty piece is "made only of digits", too.
        if (piece == "claude" || piece == "us" || piece == "anthropic" || isNumber(piece)) {
            continue;
        }
        std::string family(piece);
        if (family.front() >= 'a' && family.front() <= 'z') {
            family.front() = static_cast<char>(family.front() - 'a' + 'A');
        }
        return family;
    }
    return std::string(model);
}

}  // namespace vorn
