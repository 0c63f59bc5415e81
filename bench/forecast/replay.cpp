#include "bench/forecast/replay.hpp"

#include <stdexcept>

#include <nlohmann/json.hpp>

#include "core/analysis/forecast/learn_rhythm.hpp"
#include "core/data/history/history_store.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/unicode/wall_offsets.hpp"

namespace vorn::bench {
namespace {

using namespace std::chrono_literals;

/// How far past its retention the store lets a history grow before it prunes.
constexpr Seconds kPruneSlack = 24h;
constexpr Seconds kZoneMargin = 70 * 24h;

/// The history as the application holds it.
class History {
public:
    History() : m_store("/nonexistent/history.jsonl") {}

    void add(const HistorySample& sample) {
        const UsageWindow window{.kind = sample.kind().value(),
                                 .usedPercent = sample.usedPercent,
                                 .resetsAt = sample.resetsAt,
                                 .observedAt = sample.observedAt};
        const auto added = m_store.add(std::span(&window, 1), sample.observedAt);
        m_samples.insert(m_samples.end(), added.begin(), added.end());
        const Instant cutoff = sample.observedAt - HistoryStore::defaultRetention;
        if (!m_samples.empty() && m_samples.front().observedAt < cutoff - kPruneSlack) {
            std::erase_if(m_samples, [&](const HistorySample& old) { return old.observedAt < cutoff; });
        }
    }
    [[nodiscard]] const std::vector<HistorySample>& samples() const { return m_samples; }

private:
    HistoryStore m_store;  ///< For its rules alone: nothing is ever written.
    std::vector<HistorySample> m_samples;
};

/// The newest reading of a kind as a window that is open at `now`: a week that ended unseen is followed by an empty
/// one.
std::optional<UsageWindow> openWindow(const std::vector<HistorySample>& samples, const WindowKind& kind, Instant now) {
    const auto newest = std::find_if(samples.rbegin(), samples.rend(),
                                     [&](const auto& sample) { return sample.kindKey == kind.key(); });
    if (newest == samples.rend() || !newest->resetsAt) {
        return std::nullopt;
    }
    UsageWindow window{.kind = kind,
                       .usedPercent = newest->usedPercent,
                       .resetsAt = newest->resetsAt,
                       .observedAt = newest->observedAt};
    if (*window.resetsAt > now) {
        return window;
    }
    if (kind.isSession()) {
        return std::nullopt;
    }
    window.usedPercent = 0;
    while (*window.resetsAt <= now) {
        window.observedAt = *window.resetsAt;
        *window.resetsAt += kind.length();
    }
    return window;
}

}  // namespace

Trace parseTrace(std::string_view line) try {
    const auto json = nlohmann::json::parse(line);
    Trace trace{.id = json.at("id"), .zone = json.at("zone"), .ask = json.at("ask")};
    for (const auto& reading : json.at("history")) {
        trace.readings.push_back({.kindKey = reading.at("k"),
                                  .usedPercent = reading.at("u"),
                                  .resetsAt = instantSince1970(reading.at("r")),
                                  .observedAt = instantSince1970(reading.at("t"))});
    }
    for (const auto& event : json.at("events")) {
        trace.events.push_back(
            {.timestamp = instantSince1970(event.at(0)), .model = "sonnet", .tokens = {.input = event.at(1)}});
    }
    for (const auto& moment : json.at("moments")) {
        trace.moments.push_back(instantSince1970(moment));
    }
    if (trace.moments.size() != trace.ask.size()) {
        throw std::runtime_error("\"moments\" and \"ask\" differ in length");
    }
    return trace;
} catch (const nlohmann::json::exception& error) {
    throw std::runtime_error(std::string("this is no trace: ") + error.what());
}

void replay(const Trace& trace, LocalActivity local, const std::function<void(const Question&)>& answer) {
    if (trace.moments.empty()) {
        return;
    }
    const ActivitySummary events(trace.events);
    const ActivitySummary* activity = local == LocalActivity::on ? &events : nullptr;
    const ZoneOffsets zone =
        wallOffsets(timeZoneNamed(trace.zone).value_or(TimeZone()), trace.moments.front() - kZoneMargin,
                    trace.moments.back() + WindowKind::week().length());
    History history;
    Rhythm rhythm;
    auto reading = trace.readings.begin();
    for (std::size_t i = 0; i < trace.moments.size(); ++i) {
        // Nothing of this very moment or later: readings and events are taken up to an instant before it.
        const Instant now = trace.moments[i] - 1ms;
        for (; reading != trace.readings.end() && reading->observedAt < now; ++reading) {
            history.add(*reading);
        }
        rhythm = VornEngine::learn(std::move(rhythm),
                                   {.history = history.samples(), .activity = activity, .zone = zone, .now = now});
        const VornEngine::ForecastInput input{
            .history = history.samples(), .activity = activity, .rhythm = rhythm, .zone = zone, .now = now};
        for (const auto& [letter, kind] : {std::pair{'w', WindowKind::week()}, std::pair{'s', WindowKind::session()}}) {
            if (trace.ask[i] != 'b' && trace.ask[i] != letter) {
                continue;
            }
            if (const auto window = openWindow(history.samples(), kind, now)) {
                answer({*window, input});
            }
        }
    }
}

}  // namespace vorn::bench
