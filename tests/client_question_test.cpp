#include "core/usage_command/client_question.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "core/data/vorn_paths.hpp"
#include "core/usage_command/probe_error.hpp"
#include "tests/support/child_watch.hpp"
#include "tests/support/readings.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using nlohmann::json;
using Kind = ProbeFailure::Kind;
using test::kNow;
using test::ScopedEnvironment;

constexpr const char* kText =
    "Current session: 23% used\nCurrent week (all models): 61% used\nCurrent week (Sonnet only): 12% used\n"
    "Last 24h · 5 requests\n  50%  Title · detail\n";
constexpr const char* kRefuses = R"(echo "error: unknown option '--input-format'" >&2; exit 1)";

std::string sample(const std::string& name) {
    return test::readAll(fs::path(VORN_REPORT_SAMPLES) / (name + ".json"));
}

/// A client made of a shell script, in a home of its own; it notes in which form it was asked.
class ClientQuestionTest : public testing::Test {
protected:
    /// `report`: what it does when it is asked for one, as a script. The text is that of `answer.json`.
    void client(const std::string& report) const {
        m_dir.write("answer.json", json{{"result", kText}}.dump());
        m_dir.executable("claude", fmt::format(R"(cd '{}'
case "$*" in
*stream-json*) echo report >>asked; {};;
*) echo text >>asked; cat answer.json;;
esac)",
                                               m_dir.path().string(), report));
    }
    void answers(const std::string& report) const {
        m_dir.write("report.json", report);
        client("read -r request; [ \"$request\" ] && cat report.json");
    }
    /// The forms in which it was asked since the last call.
    [[nodiscard]] std::string asked() const {
        std::string forms;
        std::ifstream file(m_dir / "asked");
        for (std::string form; std::getline(file, form);) {
            forms += (forms.empty() ? "" : " ") + form;
        }
        fs::remove(m_dir / "asked");
        return forms;
    }
    [[nodiscard]] ClientAnswer ask(ClientQuestion question = {}, Instant now = kNow) const {
        question.claudePath = m_dir / "claude";
        return question.ask([now] { return now; });
    }
    /// In which forms it was asked, and whether there was an answer.
    [[nodiscard]] std::string outcome(const ClientQuestion& question = {}, Instant now = kNow) const {
        try {
            const ClientAnswer answer = ask(question, now);
            return asked() + (answer.plan.empty() ? ": text" : ": report");
        } catch (const ProbeError& error) {
            return asked() + ": " + rawValue(error.kind());
        }
    }

    test::TemporaryDirectory m_dir;
    ScopedEnvironment m_root{"VORN_HOME", (m_dir / "vorn").c_str()};
    ScopedEnvironment m_home{"HOME", (m_dir / "home").c_str()};
    ScopedEnvironment m_configuration{"CLAUDE_CONFIG_DIR", nullptr};
    test::ChildWatch m_watch{m_dir / "pids"};
};

TEST_F(ClientQuestionTest, TakesTheReportWhereThereIsOne) {
    answers("{\"type\":\"system\"}\n" + sample("model-week-and-credits"));
    const ClientAnswer answer = ask();
    ASSERT_EQ(answer.windows.size(), 3U);
    EXPECT_EQ(answer.windows[0].usedPercent, 42.5);
    EXPECT_EQ(answer.windows[2].kind, WindowKind::weekModel("Fable"));
    EXPECT_EQ(answer.others.value().credits->spent, 1540);
    EXPECT_EQ(std::tuple(answer.plan, answer.isComplete, answer.fetchedAt, answer.answeredAt),
              std::tuple("max", true, kNow, kNow));
    EXPECT_EQ(outcome(), "report report: report");
    EXPECT_FALSE(fs::exists(VornPaths::clientMemory())) << "nothing to remember";
    answers(sample("no-figures"));
    EXPECT_EQ(outcome(), "report: commandFailed");
    answers(sample("api-key"));
    EXPECT_EQ(outcome(), "report: notSubscription");
}

TEST_F(ClientQuestionTest, TriesOnceWhatAClientDoesNotKnow) {
    const std::string error = R"({"type":"control_response","response":{"subtype":"error","error":"Unsupported"}})";
    const struct {
        const char* name;
        std::string report;
        Seconds remembered;
    } cases[] = {{"unknown option", kRefuses, 7 * 24h},
                 {"unknown request", "echo '" + error + "'", 7 * 24h},
                 {"another language", "echo Welcome!", 24h},
                 {"a crash", "kill -9 $$", 24h}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(m_dir / "vorn");
        client(c.report);
        EXPECT_EQ(outcome({.storesNothing = true}), "report text: text");
        EXPECT_EQ(outcome(), "report text: text");
        EXPECT_EQ(outcome(), "text: text");
        EXPECT_EQ(outcome({}, kNow + c.remembered - 1s), "text: text");
        EXPECT_EQ(outcome({}, kNow + c.remembered), "report text: text") << "what is behind a script may have changed";
        EXPECT_EQ(outcome({}, kNow - 60 * 24h), "report text: text") << "the clock was set back";
        client(c.report + " ");
        EXPECT_EQ(outcome(), "report text: text") << "another executable";
        m_dir.write("vorn/client.json", R"({"executables": [{"executable": 5}, {"textUntil": "x"}]})");
        EXPECT_EQ(outcome(), "report text: text");
    }
    const ClientAnswer answer = ask();
    EXPECT_EQ(asked(), "text");
    EXPECT_TRUE(answer.isComplete);
    EXPECT_EQ(answer.windows.at(2).kind, WindowKind::weekModel("Sonnet")) << "one name, whoever tells of it";

    // Where nothing can be written this process knows it all the same.
    fs::remove_all(m_dir / "vorn");
    fs::create_directories(m_dir / "vorn/client.json/in the way");
    client(kRefuses);
    EXPECT_EQ(outcome(), "report text: text");
    EXPECT_EQ(outcome(), "text: text");
}

TEST_F(ClientQuestionTest, KnowsWhenFiguresWereTrue) {
    const ScopedEnvironment directory("CLAUDE_CONFIG_DIR", m_dir.path().c_str());
    const auto keeps = [&](double session, Instant fetchedAt) {
        const json limits = {{"five_hour", {{"utilization", session}, {"resets_at", "2026-11-23T15:33:16.000Z"}}},
                             {"seven_day", {{"utilization", 61.2}, {"resets_at", "2026-11-26T21:03:16.000Z"}}}};
        m_dir.write(".claude.json", json{{"cachedUsageUtilization",
                                          {{"fetchedAtMs", secondsSince1970(fetchedAt) * 1000},
                                           {"accountUuid", "8e4ff3"},
                                           {"utilization", limits}}}}
                                        .dump());
    };
    answers(sample("model-week-and-credits"));
    EXPECT_EQ(ask().fetchedAt, kNow) << "a client that keeps nothing";
    keeps(42.5, kNow - 20min);
    const ClientAnswer old = ask();
    EXPECT_EQ(old.fetchedAt, kNow - 20min);
    EXPECT_EQ(old.answeredAt, kNow);
    EXPECT_EQ(old.windows.at(0).observedAt, kNow - 20min);
    EXPECT_EQ(old.others.value().credits.value().observedAt, kNow - 20min);
    EXPECT_TRUE(old.isStale());
    EXPECT_TRUE(!old.account.empty() && old.account.find("8e4ff3") == std::string::npos);
    keeps(42.5, kNow + 1h);
    EXPECT_EQ(ask().fetchedAt, kNow);
    // Where a fresh answer was once not kept, an old time says no more than that the figures are no older.
    keeps(40, kNow - 20min);
    EXPECT_EQ(ask().fetchedAt, kNow);
    keeps(42.5, kNow - 20min);
    EXPECT_EQ(ask().fetchedAt, kNow - 20min);
    EXPECT_FALSE(ask().isStale());
    for (const char* damaged : {"", "[", "{\"cachedUsageUtilization\":{\"fetchedAtMs\":\"1\",\"utilization\":[]}}"}) {
        m_dir.write(".claude.json", damaged);
        EXPECT_EQ(ask().fetchedAt, kNow) << damaged;
    }
}

TEST_F(ClientQuestionTest, EndsInTimeWhicheverFormHangs) {
    client("echo $$ >>pids; exec sleep 60");
    EXPECT_EQ(outcome({.timeout = 0.3s}), "report: timedOut");
    EXPECT_EQ(outcome({.timeout = 10s}), "text: text");
    EXPECT_EQ(outcome({.timeout = 0.3s}, kNow + 1h), "report: timedOut");
}

TEST_F(ClientQuestionTest, AsksForTheTextAsWellWhileItsBreakdownIsLookedAt) {
    const std::string keys = sample("behaviors-2.1.197");
    std::string report = sample("no-figures");
    report.replace(
        report.find(R"("rate_limits":null)"), report.size(),
        R"("rate_limits":{"five_hour":{"utilization":23.4}},)" + keys.substr(1, keys.rfind('}') - 1) + "}}}");
    answers(report);
    EXPECT_EQ(ask().insights, std::nullopt);
    EXPECT_EQ(asked(), "report");
    const ClientQuestion looking{.wantsBreakdown = true};
    const ClientAnswer answer = ask(looking);
    EXPECT_EQ(asked(), "report text");
    EXPECT_EQ(answer.windows.at(0).usedPercent, 23.4);
    EXPECT_EQ(answer.insights->periods.at(0).findings.at(0).text, "Title · detail");
    // Whoever may not ask knows what it said.
    EXPECT_EQ(ask(looking, kNow + 59min).insights, answer.insights);
    EXPECT_EQ(asked(), "report");
    m_dir.write("answer.json", "torn");
    EXPECT_EQ(ask(looking, kNow + 60min).windows, ask(looking, kNow + 60min).windows);
    EXPECT_EQ(asked(), "report text report");
}

TEST_F(ClientQuestionTest, KeepsAnAnswerSmallEnoughToBeReadBack) {
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += fmt::format("Current week (M{}{}): 5% used\n", i, std::string(2000, 'x'));
    }
    client(kRefuses);
    m_dir.write("answer.json", json{{"result", text + kText}}.dump());
    const ClientAnswer answer = ask();
    EXPECT_EQ(answer.windows.size(), 102U);
    EXPECT_EQ(answer.windows.at(0).kind.modelName().size(), 1000U);
    EXPECT_TRUE(answer.isComplete);
}

}  // namespace
}  // namespace vorn
