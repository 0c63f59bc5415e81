#include "core/usage_command/usage_command_probe.hpp"

#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>

#include <gmock/gmock.h>

#include "core/data/vorn_paths.hpp"
#include "core/usage_command/probe_error.hpp"
#include "tests/support/child_watch.hpp"
#include "tests/support/repeated.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {

static void PrintTo(const ProbeError& error, std::ostream* stream) {
    *stream << static_cast<int>(error.kind()) << " \"" << error.payload() << '"';
}

namespace {

using namespace std::chrono_literals;
using Kind = ProbeError::Kind;
using test::ScopedEnvironment;

constexpr Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 21h;

template <typename Call>
std::optional<ProbeError> errorOf(Call call) {
    try {
        call();
    } catch (const ProbeError& error) {
        return error;
    }
    return std::nullopt;
}

TEST(UsageCommandProbeInterpret, TellsWhyThereIsNoReading) {
    constexpr Kind kUnread = Kind::unrecognizedOutput;
    const std::string umlauts = test::repeated(300, "ü");
    const std::tuple<std::string, Kind, std::string> cases[] = {
        {"", kUnread, ""},
        {R"({"result": "Current ses)", kUnread, R"({"result": "Current ses)"},
        {"{} {}", kUnread, "{} {}"},
        {R"(["result"])", kUnread, R"(["result"])"},
        {"\xff\xfe{", kUnread, "\uFFFD\uFFFD{"},
        {"x" + umlauts, kUnread, "x" + umlauts.substr(0, 298) + "\uFFFD"},  // 300 bytes cut a character
        {"{}", kUnread, ""},
        {R"({"result": 23})", kUnread, ""},
        {R"({"usage": {"result": "Current session: 2% used"}})", kUnread, ""},
        {R"({"result": "Current session: 2% used", "result": []})", kUnread, ""},
        {R"({"result": ")" + umlauts + R"(ü"})", kUnread, umlauts},
        {R"({"is_error": true, "result": "Current session: 2%"})", Kind::commandFailed, "Current session: 2%"},
        {R"({"result": null, "is_error": true})", Kind::commandFailed, ""},
        {R"({"result": "Invalid API key, please log in"})", Kind::notSubscription, ""},
        {R"({"result": "/usage is Only Available for SUBSCRIPTION plans."})", Kind::notSubscription, ""},
        {R"({"is_error": false, "result": "Total cost: 0"})", kUnread, "Total cost: 0"},
        {std::string(5000000, '['), kUnread, std::string(300, '[')},
        {test::repeated(1000000, R"({"a":)"), kUnread, test::repeated(60, R"({"a":)")}};
    for (const auto& [output, kind, payload] : cases) {
        SCOPED_TRACE(output.substr(0, 100));
        EXPECT_EQ(errorOf([&, &text = output] { UsageCommandProbe::interpret(text, kNow); }),
                  ProbeError(kind, payload));
    }
}

TEST(UsageCommandProbeInterpret, ReadsTheResultAroundWhateverElseThereIs) {
    const std::string results[] = {
        R"({"result": "Current session: 23% used"})",
        R"( {"result": [1], "is_error": true, "is_error": "true", "result": "Current session: 23% used"} )",
        R"({"is_error": 1, "result": "Your API key …\nCurrent session: 23% used", "usage": {"is_error": true, "a": [{}]}})",
        R"({"x": )" + std::string(1000000, '[') + std::string(1000000, ']') +
            R"(, "result": "Current session: 23% used"})",
        R"({"result": ")" + std::string(5000000, '%') + R"(\nCurrent session: 23% used"})",
    };
    for (const std::string& output : results) {
        SCOPED_TRACE(output.substr(0, 100));
        const auto result = UsageCommandProbe::interpret(output, kNow);
        ASSERT_EQ(result.windows.size(), 1U);
        EXPECT_EQ(result.windows[0].usedPercent, 23);
    }
}

/// A client made of a shell script, in a home of its own.
class UsageCommandProbeTest : public testing::Test {
protected:
    [[nodiscard]] UsageCommandProbe probe(const std::string& script, Seconds timeout = 10s) const {
        return {.executable = m_directory.executable("claude", script), .timeout = timeout};
    }
    static std::optional<ProbeError> errorOfRun(const UsageCommandProbe& probe) {
        return errorOf([&] { (void)probe.run([] { return kNow; }); });
    }

    test::TemporaryDirectory m_directory;
    ScopedEnvironment m_root{"VORN_HOME", (m_directory / "vorn").c_str()};
    ScopedEnvironment m_home{"HOME", (m_directory / "home").c_str()};
    test::ChildWatch m_watch{m_directory / "vorn/probe/pids"};
};

TEST_F(UsageCommandProbeTest, ReadsTheClock) {
    const auto result = probe(R"(echo '{"result": "Current session: 23% used"}')").run([this] {
        EXPECT_TRUE(std::filesystem::exists(m_directory / "vorn/probe"));
        return kNow;
    });
    EXPECT_EQ(result.windows.at(0).observedAt, kNow);
}

TEST_F(UsageCommandProbeTest, AsksInPrintModeInAnEmptyDirectory) {
    const ScopedEnvironment secret("ANTHROPIC_API_KEY", "secret");
    const ScopedEnvironment noShell("SHELL", nullptr);
    const ScopedEnvironment user("USER", "a");
    const ScopedEnvironment logName("LOGNAME", "b");
    const ScopedEnvironment temporary("TMPDIR", "/tmp");
    const ScopedEnvironment locale("LANG", "de_DE.UTF-8");
    const ScopedEnvironment path("PATH", "/bin:/opt/x");
    const std::string home = (m_directory / "home").string();
    const std::string rest = "LANG=en_US.UTF-8\nLOGNAME=b\nNO_COLOR=1\nPATH=/bin:/opt/x:" + home +
                             "/.local/bin:" + home + "/.claude/local:/opt/homebrew/bin:/usr/local/bin:" + home +
                             "/.npm-global/bin:" + home + "/.bun/bin:" + home +
                             "/.volta/bin:/usr/bin:/usr/sbin:/sbin\nTMPDIR=/tmp\nUSER=a\n";
    const auto environment = [](const char* configuration) {
        const ScopedEnvironment set("CLAUDE_CONFIG_DIR", configuration);
        return UsageCommandProbe::execute("/usr/bin/env", {}, 10s);
    };
    EXPECT_EQ(environment("/c d"), "CLAUDE_CONFIG_DIR=/c d\nHOME=" + home + "\n" + rest);
    EXPECT_EQ(environment(""), "HOME=" + home + "\n" + rest);
    const ScopedEnvironment noHome("HOME", nullptr);
    EXPECT_THAT(environment(nullptr), testing::StartsWith("LANG="));

    const auto error = errorOfRun(probe(R"(printf '%s|' "$@"; pwd; ls -A)"));
    EXPECT_EQ(error, ProbeError(Kind::unrecognizedOutput,
                                "-p|/usage|--safe-mode|--no-session-persistence|--output-format|json|" +
                                    (m_directory / "vorn/probe").string() + "\n"));
}

TEST_F(UsageCommandProbeTest, TellsWhatWentWrong) {
    const std::string notFinished(300, '\0');
    const struct {
        const char* script;
        ProbeError error;
    } cases[] = {
        {"sleep 60 & echo $! >>pids; echo $$ >>pids; wait", ProbeError(Kind::timedOut)},
        {"head -c 50000000 /dev/zero", ProbeError(Kind::unrecognizedOutput, notFinished)},
        {"head -c 50000000 /dev/zero >&2; exit 1", ProbeError(Kind::commandFailed, notFinished)},
        {"echo oops; kill -KILL $$", ProbeError(Kind::commandFailed, "oops\n")},
        {"exit 1", ProbeError(Kind::commandFailed)},
        {R"(echo '{"result": "Current session: 2% used"}'; echo why >&2; exit 2)",
         ProbeError(Kind::commandFailed, "why\n")},
        {"head -c 200000 /dev/zero >&2", ProbeError(Kind::unrecognizedOutput)},
        {"exec >&- 2>&-; exit 0", ProbeError(Kind::unrecognizedOutput)},
        {"sleep 60 & echo $! >>pids; echo gone", ProbeError(Kind::unrecognizedOutput, "gone\n")},
        {"echo \"error: unknown option '--safe-mode'\" >&2; exit 1",
         ProbeError(Kind::commandFailed, "error: unknown option '--safe-mode'\n")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        const auto start = std::chrono::steady_clock::now();
        const bool hangs = c.error.kind() == Kind::timedOut;
        const auto error = errorOfRun(probe(c.script, hangs ? 0.3s : 10s));
        EXPECT_EQ(error, c.error);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
        m_watch.expectNothingLeft();
    }
}

TEST_F(UsageCommandProbeTest, TellsWhyItDidNotStart) {
    const auto text = m_directory.write("text", "#!/bin/sh\n");
    EXPECT_EQ(errorOfRun({.executable = text}), ProbeError(Kind::launchFailed, text.string() + ": Permission denied"));
    EXPECT_EQ(errorOfRun({.executable = "/no/\xff"}),
              ProbeError(Kind::launchFailed, "/no/\uFFFD: No such file or directory"));

    const ScopedEnvironment inFile("VORN_HOME", text.c_str());
    EXPECT_EQ(errorOfRun(probe("")),
              ProbeError(Kind::launchFailed, "cannot work in " + text.string() + "/probe: Not a directory"));
}

TEST_F(UsageCommandProbeTest, CanBeCancelled) {
    Cancellation cancellation;
    cancellation.cancel();
    EXPECT_THROW((void)probe("").run([] { return kNow; }, &cancellation), Cancelled);
}

}  // namespace
}  // namespace vorn
