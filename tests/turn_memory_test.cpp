#include "core/status_line/turn_memory.hpp"

#include <chrono>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/support/file.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {

bool operator==(const TurnPlace& one, const TurnPlace& other) {
    return one.at == other.at && one.isNew == other.isNew && one.isLatest == other.isLatest;
}
void PrintTo(const TurnPlace& place, std::ostream* out) {
    *out << formatIso8601Milliseconds(place.at) << (place.isNew ? " new" : " known")
         << (place.isLatest ? " latest" : " earlier");
}

namespace {

using namespace std::chrono_literals;

const Instant kNow = std::chrono::sys_days{2026y / 11 / 22} + 20h;

class TurnMemory : public testing::Test {
protected:
    TurnPlace place(std::string_view input, Instant now) { return placeTurn(m_file, input, now); }
    static std::string inputOf(int session, int turn = 1) {
        return fmt::format(R"({{"session_id":"{}","prompt_id":"{}","rate_limits":{{}}}})", session, turn);
    }

    const test::TemporaryDirectory m_dir;
    const std::filesystem::path m_file = m_dir / "new/turns.txt";
};

TEST_F(TurnMemory, KnowsATurnAgain) {
    const char* const turns[] = {
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":1}}})",
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":2}}})",
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":2}},"prompt_id":"p"})",
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":2}},"prompt_id":"q"})",
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":2}},"prompt_id":"q","cost":{"total_api_duration_ms":23}})",
        R"({"session_id":"a","rate_limits":{"five_hour":{"used_percentage":2}},"prompt_id":"q","cost":{"total_api_duration_ms":24}})",
        R"({"session_id":"b","rate_limits":{"five_hour":{"used_percentage":2}},"prompt_id":"q","cost":{"total_api_duration_ms":24}})",
        R"({"rate_limits":{"five_hour":{"used_percentage":2}}})",
    };
    Instant now = kNow;
    for (const char* turn : turns) {
        EXPECT_EQ(place(turn, now), (TurnPlace{.at = now})) << turn;
        EXPECT_EQ(place(turn, now + 1h), (TurnPlace{.at = now, .isNew = false})) << turn;
        now += 1min;
    }
    const char* const redrawn =
        R"({"cost":{"total_cost_usd":1,"total_duration_ms":9,"total_api_duration_ms":24},"prompt_id":"q","session_id":"b",)"
        R"("rate_limits":{"five_hour":{"used_percentage":2}}})";
    EXPECT_EQ(place(redrawn, now), (TurnPlace{.at = kNow + 6min, .isNew = false, .isLatest = false}));
}

TEST_F(TurnMemory, RemembersTheLast32Sessions) {
    for (int session = 0; session < 33; ++session) {
        place(inputOf(session), kNow + session * 1s);
    }
    EXPECT_EQ(place(inputOf(1), kNow + 60s), (TurnPlace{.at = kNow + 1s, .isNew = false, .isLatest = false}));
    EXPECT_TRUE(place(inputOf(0), kNow + 60s).isNew) << "the one whose turn is longest ago is forgotten";
    EXPECT_LT(test::readAll(m_file).size(), 32 * 48);
}

TEST_F(TurnMemory, DoesNotBelieveTheFuture) {
    place(inputOf(1), kNow + 1h);
    EXPECT_EQ(place(inputOf(2), kNow), (TurnPlace{.at = kNow})) << "the clock was set back";
    EXPECT_EQ(place(inputOf(1), kNow + 1s), (TurnPlace{.at = kNow + 1s}));
}

TEST_F(TurnMemory, SkipsDamagedLines) {
    place(inputOf(1), kNow);
    const std::string line = test::readAll(m_file);
    for (const std::string& damage : {line.substr(0, line.size() / 2), std::string("x y z"), std::string(" "),
                                      "1" + line.substr(0, line.size() - 1) + "0", std::string(60, '\0')}) {
        m_dir.write("new/turns.txt", damage + "\n" + line + damage);
        EXPECT_EQ(place(inputOf(1), kNow + 1s), (TurnPlace{.at = kNow, .isNew = false})) << damage;
    }
    m_dir.write("new/turns.txt", std::string(1 << 20, '1'));
    EXPECT_EQ(place(inputOf(1), kNow + 2s), (TurnPlace{.at = kNow + 2s}));
    EXPECT_EQ(place(inputOf(1), kNow + 3s), (TurnPlace{.at = kNow + 2s, .isNew = false}));
}

TEST_F(TurnMemory, IsNoObstacle) {
    place(inputOf(1), kNow);
    {
        const auto held = FileLock::acquire(m_dir / "new/turns.txt.lock", 0ms);
        EXPECT_EQ(place(inputOf(1), kNow + 1s), (TurnPlace{.at = kNow, .isNew = false}));
        EXPECT_EQ(place(inputOf(1, 2), kNow + 2s), (TurnPlace{.at = kNow + 2s}));
    }
    EXPECT_EQ(place(inputOf(1, 2), kNow + 3s), (TurnPlace{.at = kNow + 3s})) << "nobody could note it";
    std::filesystem::remove(m_file);
    std::filesystem::create_directory(m_file);
    EXPECT_EQ(place(inputOf(1, 3), kNow + 4s), (TurnPlace{.at = kNow + 4s}));
    EXPECT_EQ(placeTurn("/proc/no/such/turns.txt", inputOf(1), kNow), (TurnPlace{.at = kNow}));
}

}  // namespace
}  // namespace vorn
