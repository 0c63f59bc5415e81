#include "core/analysis/history_index.hpp"

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

/// The rule itself, without any index.
MatchingSamples filtered(const UsageWindow& window, const std::vector<HistorySample>& history) {
    std::vector<VornEngine::RatePoint> points;
    for (const HistorySample& sample : history) {
        if (sample.sameWindow(window)) {
            points.push_back({sample.observedAt, sample.usedPercent});
        }
    }
    return MatchingSamples(std::move(points));
}

TEST(HistoryIndex, findsWhatTheRuleFindsHoweverTheHistoryGrew) {
    const std::vector<WindowKind> kinds{WindowKind::session(), WindowKind::week(), WindowKind::weekModel("Opus")};
    std::mt19937 random(7);
    const auto upTo = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit)(random);
    };
    // Times collide, jump back and lie ahead; reset times lie on both sides of the tolerance.
    const auto anyWindow = [&] {
        UsageWindow window = reading(kinds[static_cast<std::size_t>(upTo(2))], upTo(100), 100s * upTo(9));
        window.observedAt += 10s * (upTo(40) - 20);
        if (upTo(5) == 0) {
            window.resetsAt.reset();
        }
        return window;
    };
    std::vector<HistorySample> samples;
    HistoryIndex index;
    for (int step = 0; step < 300; ++step) {
        for (int i = upTo(3); i > 0; --i) {
            samples.push_back(HistorySample::of(anyWindow()));
        }
        if (step % 50 == 49) {
            samples.erase(samples.begin(), samples.begin() + upTo(60));
        }
        index.update(samples);
        EXPECT_EQ(index.count(), samples.size());
        const UsageWindow window = anyWindow();
        ASSERT_EQ(index.matching(window), filtered(window, samples));
    }
    index.update({});
    EXPECT_EQ(index.matching(anyWindow()), MatchingSamples());
}

TEST(HistoryIndex, leavesOutWhatIsNotFinite) {
    const UsageWindow window = reading(WindowKind::session(), 10, 1h);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<HistorySample> samples(4, HistorySample::of(window));
    samples[0].usedPercent = nan;
    samples[1].observedAt = Instant{Seconds{std::numeric_limits<double>::infinity()}};
    samples[2].resetsAt = Instant{Seconds{nan}};
    EXPECT_EQ(HistoryIndex(samples).matching(window), history({{0s, 10}}));
}

}  // namespace
}  // namespace vorn
