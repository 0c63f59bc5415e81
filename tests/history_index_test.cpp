#include "core/analysis/history_index.hpp"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/readings.hpp"

namespace vorn {
namespace {

using namespace test;

TEST(HistoryIndex, findsWhatTheRuleFindsHoweverTheHistoryGrew) {
    const std::vector<WindowKind> kinds{WindowKind::session(), WindowKind::week(), WindowKind::weekModel("Opus")};
    std::mt19937 random(7);
    const auto upTo = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit)(random);
    };
    // Times collide, jump back and lie ahead; reset times lie on both sides of the tolerance; some are no numbers.
    const auto anyWindow = [&] {
        UsageWindow window = reading(kinds[static_cast<std::size_t>(upTo(2))], upTo(100), 100s * upTo(9));
        window.observedAt += 10s * (upTo(40) - 20);
        window.usedPercent = upTo(20) == 0 ? std::nan("") : window.usedPercent;
        window.resetsAt = upTo(5) == 0 ? std::nullopt : window.resetsAt;
        window.resetsAt = upTo(20) == 0 ? Instant{Seconds{std::nan("")}} : window.resetsAt;
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
        const UsageWindow window = anyWindow();
        std::vector<VornEngine::RatePoint> matching;
        for (const HistorySample& sample : samples) {
            if (sample.sameWindow(window)) {
                matching.push_back({sample.observedAt, sample.usedPercent});
            }
        }
        ASSERT_EQ(index.matching(window), MatchingSamples(matching));
    }
    index.update({});
    EXPECT_EQ(index.matching(anyWindow()), MatchingSamples());
}

}  // namespace
}  // namespace vorn
