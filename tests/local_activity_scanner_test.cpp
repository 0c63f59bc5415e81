#include "core/transcripts/local_activity_scanner.hpp"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <random>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temporary_directory.hpp"

namespace vorn {

void PrintTo(const ActivityEvent& event, std::ostream* out) {
    const TokenCounts& t = event.tokens;
    *out << fmt::format("{} {} {} {}/{}/{}/{}/{}", formatIso8601Milliseconds(event.timestamp), event.model.str(),
                        event.cwd.str(), t.input, t.output, t.cacheRead, t.cacheWrite5m, t.cacheWrite1h);
}

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::ElementsAreArray;

const Instant kNow = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22} + 22h;
constexpr Seconds kWeek = std::chrono::days{7};

/// A reply's line with its line feed. `ids` are members of the message and of the line.
struct Reply {
    std::string id = "msg_1";
    std::string request = "req_1";
    Instant at = kNow - 1h;
    int output = 10;
    std::string padding{};

    [[nodiscard]] std::string line() const {
        const auto member = [](const char* name, const std::string& value) {
            return value.empty() ? "" : fmt::format(R"("{}":"{}",)", name, value);
        };
        return fmt::format(
            R"({{"message":{{{}"model":"claude-opus-5-5","content":"{}","usage":{{"output_tokens":{}}}}},)"
            R"({}"type":"assistant","timestamp":"{}","cwd":"/home/ana/proj"}})"
            "\n",
            member("id", id), padding, output, member("requestId", request), formatIso8601Milliseconds(at));
    }
};

std::vector<std::int64_t> outputs(const std::vector<ActivityEvent>& events) {
    std::vector<std::int64_t> out;
    std::ranges::transform(events, std::back_inserter(out), [](const auto& event) { return event.tokens.output; });
    return out;
}

class LocalActivityScannerTest : public testing::Test {
protected:
    /// Writes a transcript that was modified at `modified`.
    fs::path write(std::string_view name, std::string_view content, Instant modified = kNow) {
        fs::path path = m_directory.write(name, content);
        touch(path, modified);
        return path;
    }
    static void append(const fs::path& path, std::string_view content, Instant modified = kNow) {
        std::ofstream(path, std::ios::app | std::ios::binary) << content;
        touch(path, modified);
    }
    static void touch(const fs::path& path, Instant modified) {
        const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(modified.time_since_epoch()).count();
        const timespec time{.tv_sec = ns / 1'000'000'000, .tv_nsec = ns % 1'000'000'000};
        const timespec times[] = {time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    std::vector<std::int64_t> scan(Instant now = kNow) { return outputs(m_scanner.scan(now)); }

    TemporaryDirectory m_directory;
    LocalActivityScanner m_scanner{m_directory.path(), kWeek};
};

TEST_F(LocalActivityScannerTest, decodesLines) {
    const std::string ok = R"("type":"assistant","timestamp":"2026-11-22T20:00:00.5Z")";
    const std::string usage = R"("message":{"usage":{"input_tokens":1}})";
    const auto counting = [&](const std::string& counts) {
        return "{" + ok + R"(,"message":{"usage":{)" + counts + "}}}";
    };
    const struct {
        const char* name;
        std::string line;
        std::optional<TokenCounts> tokens;
        const char* model = "unknown";
        const char* cwd = "";
    } cases[] = {
        {"any order", "{" + usage + "," + ok + R"(,"cwd":"/a"})", TokenCounts{.input = 1}, "unknown", "/a"},
        {"spaces", "{ \"x\" : [ 1 , {} ] , " + ok + " ,\t" + usage + " } ", TokenCounts{.input = 1}},
        {"nulls are absent",
         "{" + ok + R"(,"cwd":null,"requestId":null,"message":{"id":null,"model":null,"usage":{"input_tokens":null,)" +
             R"("output_tokens":3,"cache_creation":null,"cache_creation_input_tokens":4}}})",
         TokenCounts{.output = 3, .cacheWrite5m = 4}},
        {"escapes",
         "{" + ok + R"(,"cwd":"/\u00e4 \"type\":\"user\"","message":{"model":"o\/p","usage":{"input_tokens":2}}})",
         TokenCounts{.input = 2}, "o/p", "/ä \"type\":\"user\""},
        {"both cache writes",
         counting(R"("cache_creation_input_tokens":9,"cache_creation":{"ephemeral_1h_input_tokens":2,)"
                  R"("ephemeral_5m_input_tokens":3})"),
         TokenCounts{.cacheWrite5m = 3, .cacheWrite1h = 2}},
        {"split of nulls",
         counting(R"("cache_creation_input_tokens":9,"cache_creation":{"ephemeral_5m_input_tokens":null})"),
         TokenCounts{.cacheWrite5m = 9}},
        {"whole numbers in other clothes", counting(R"("input_tokens":12.0,"output_tokens":1e2)"),
         TokenCounts{.input = 12, .output = 100}},
        {"the last of equal names", "{" + ok + R"(,"message":{"usage":{"input_tokens":5}},)" + usage + "}",
         TokenCounts{.input = 1}},
        {"nested look-alikes",
         R"({"a":{"type":"user","message":3},)" + ok + R"(,"message":{"content":[{"usage":{"input_tokens":99}}],)" +
             R"("usage":{"iterations":[{"output_tokens":8}],"output_tokens":8}}})",
         TokenCounts{.output = 8}},

        {"zero tokens", counting(R"("input_tokens":0)"), {}},
        {"fraction", counting(R"("input_tokens":1.5)"), {}},
        {"too large", counting(R"("input_tokens":4294967296)"), {}},
        {"negative", counting(R"("input_tokens":-1,"output_tokens":5)"), {}},
        {"beyond doubles", counting(R"("input_tokens":1e999)"), {}},
        {"wrong type elsewhere", "{" + ok + R"(,"cwd":5,)" + usage + "}", {}},
        {"id is a number", "{" + ok + R"(,"message":{"id":1,"usage":{"input_tokens":1}}})", {}},
        {"message is a text", "{" + ok + R"(,"message":"usage","usage":{"input_tokens":1}})", {}},
        {"synthetic", "{" + ok + R"(,"message":{"model":"<synthetic>","usage":{"input_tokens":1}}})", {}},
        {"no fraction", R"({"type":"assistant","timestamp":"2026-11-22T20:00:00Z",)" + usage + "}", {}},
        {"no zone", R"({"type":"assistant","timestamp":"2026-11-22T20:00:00.5",)" + usage + "}", {}},
        {"another type",
         R"({"timestamp":"2026-11-22T20:00:00.5Z","x":{"type":"assistant"},"type":"user",)" + usage + "}",
         {}},
        {"type with a space", R"({"type": "assistant","timestamp":"2026-11-22T20:00:00.5Z",)" + usage + "}", {}},
        {"escaped usage", "{" + ok + R"(,"message":{"us\u0061ge":{"input_tokens":1}}})", {}},
        {"quoted whole", R"({"type":"user","content":"{\"type\":\"assistant\",\"usage\":{\"input_tokens\":9}}"})", {}},
        {"cut short", "{" + ok + "," + usage, {}},
        {"something behind", "{" + ok + "," + usage + "}{}", {}},
        {"not UTF-8", "{" + ok + ",\"x\":\"\xff\"," + usage + "}", {}},
        {"lone surrogate", "{" + ok + R"(,"cwd":"\ud800",)" + usage + "}", {}},
        {"brackets without end", "{" + ok + "," + usage + ",\"x\":" + std::string(100000, '['), {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryDirectory directory;
        touch(directory.write("a.jsonl", c.line + "\n"), kNow);
        std::vector<ActivityEvent> expected;
        if (c.tokens) {
            expected.push_back({.timestamp = kNow - 7199.5s, .model = c.model, .cwd = c.cwd, .tokens = *c.tokens});
        }
        EXPECT_EQ(LocalActivityScanner(directory.path(), kWeek).scan(kNow), expected);
    }
}

TEST_F(LocalActivityScannerTest, keepsTheMostCompleteCopyOfAReply) {
    write("a.jsonl", Reply{.output = 1, .padding = "a"}.line() + Reply{.output = 9}.line() + Reply{.output = 4}.line());
    EXPECT_THAT(scan(), ElementsAre(9));
    write("b.jsonl", Reply{.output = 8}.line() + Reply{.request = "req_2", .output = 5}.line() +
                         Reply{.request = "", .output = 6}.line() + Reply{.id = "", .output = 7}.line() +
                         Reply{.id = "", .request = "", .output = 3}.line() +
                         Reply{.id = "", .request = "", .output = 3}.line());
    EXPECT_THAT(scan(), testing::UnorderedElementsAre(9, 5, 6, 7, 3, 3));
    append(m_directory / "a.jsonl", Reply{.at = kNow - 2h, .output = 11}.line());
    EXPECT_THAT(scan(), ElementsAre(11, 5, 6, 7, 3, 3));  // by time, then in the order read
}

/// What Claude Code writes for a turn that the service refused, but for members that do not matter.
std::string refusedLine(Instant at, std::string_view quota, std::string_view more = R"("isApiErrorMessage":true,)") {
    return fmt::format(
        R"({{"isSidechain":false,"type":"assistant","timestamp":"{}","message":{{"id":"7a147430","model":"<synthetic>",)"
        R"("usage":{{"input_tokens":0,"output_tokens":0}},"content":[{{"type":"text","text":"5-hour limit"}}]}},)"
        R"("requestId":"req_x","apiError":"usage_limit_reached","quotaLimits":{},{}"cwd":"/home/ada"}})"
        "\n",
        formatIso8601Milliseconds(at), quota, more);
}

TEST_F(LocalActivityScannerTest, handsOutTurnsThatWereRefused) {
    const Instant at = kNow - 1h;
    const std::string rejected = R"({"status":"rejected","resetsAt":1795448693,"rateLimitType":"five_hour"})";
    const fs::path file = write("a.jsonl", refusedLine(at, rejected) + Reply{}.line());
    write("resumed.jsonl", refusedLine(at, rejected) + refusedLine(kNow - kWeek - 1s, rejected));
    write("other.jsonl",
          refusedLine(at, R"({"rateLimitType":"seven_day_opus","status":"rejected","resetsAt":1795448693000})") +
              refusedLine(at, R"({"rateLimitType":"seven_day","status":"rejected","resetsAt":"?"})") +
              // Not these, and nothing in them spoils anything.
              refusedLine(at, R"({"rateLimitType":"five_hour","status":"allowed_warning","resetsAt":1})") +
              refusedLine(at, R"({"rateLimitType":"overage","status":"rejected"})") + refusedLine(at, "7") +
              refusedLine(at, R"({"status":["rejected"],"rateLimitType":{}})") +
              refusedLine(at, rejected, R"("isApiErrorMessage":"true",)") + refusedLine(at, rejected, ""));
    EXPECT_EQ(scan(), std::vector<std::int64_t>{10});
    const RefusedTurn session{.at = at, .kind = WindowKind::session(), .resetsAt = instantSince1970(1795448693)};
    EXPECT_THAT(m_scanner.refusals(), ElementsAre(session, RefusedTurn{.at = at, .kind = WindowKind::week()},
                                                  RefusedTurn{.at = at, .kind = WindowKind::weekModel("Opus")}));

    EXPECT_FALSE(m_scanner.update(kNow));
    append(file, refusedLine(kNow, R"({"rateLimitType":"seven_day","status":"rejected"})"), kNow + 1s);
    EXPECT_TRUE(m_scanner.update(kNow)) << "who polls is told";
    EXPECT_EQ(m_scanner.refusals().size(), 4);
    EXPECT_TRUE(m_scanner.update(kNow + kWeek - 1s));
    EXPECT_EQ(m_scanner.refusals().size(), 1) << "kept as long as replies";

    const std::string reply = Reply{.id = "msg_2"}.line();
    write("b.jsonl",
          reply.substr(0, reply.size() - 2) + R"(,"quotaLimits":{"status":5},"isApiErrorMessage":[]})" + "\n");
    EXPECT_EQ(scan(), std::vector<std::int64_t>{10}) << "a reply is one, whatever it says of limits";
}

TEST_F(LocalActivityScannerTest, prefersTheFirstOfEqualCopiesWhateverIsReadFirst) {
    // The larger file is read first, but the smaller one has the first name.
    const std::string bulk(3U << 20U, ' ');
    for (const bool isFirstLarger : {false, true}) {
        const TemporaryDirectory directory;
        touch(directory.write("a.jsonl", Reply{.at = kNow - 3h}.line() + (isFirstLarger ? bulk : "")), kNow);
        touch(directory.write("b.jsonl", Reply{.at = kNow - 2h}.line() + (isFirstLarger ? "" : bulk)), kNow);
        LocalActivityScanner scanner(directory.path(), kWeek);
        EXPECT_EQ(scanner.scan(kNow).at(0).timestamp, kNow - 3h);
        append(directory / "a.jsonl", "\n" + Reply{.at = kNow - 4h}.line());
        EXPECT_EQ(scanner.scan(kNow).at(0).timestamp, kNow - 3h);
    }
}

TEST_F(LocalActivityScannerTest, dropsWhatIsOlderThanTheLookback) {
    write("a.jsonl", Reply{.id = "at", .at = kNow - kWeek, .output = 1}.line() +
                         Reply{.id = "older", .at = kNow - kWeek - 1ms, .output = 2}.line() +
                         Reply{.id = "future", .at = kNow + 24h, .output = 3}.line());
    EXPECT_THAT(scan(), ElementsAre(1, 3));
    EXPECT_THAT(scan(kNow + 1s), ElementsAre(3));
    EXPECT_THAT(scan(kNow - 1s), ElementsAre(3));  // what is gone stays gone
    // A reply that was dropped may come again with a time inside the lookback, even with fewer tokens.
    append(m_directory / "a.jsonl", Reply{.id = "at", .at = kNow - 1h, .output = 1}.line(), kNow + 1s);
    EXPECT_THAT(scan(kNow + 1s), ElementsAre(1, 3));
    EXPECT_THAT(scan(kNow + 2 * kWeek), ElementsAre());
}

TEST_F(LocalActivityScannerTest, selectsFiles) {
    const std::string keyless = Reply{.id = "", .request = "", .output = 1}.line();
    const auto outside = m_directory.write("../" + m_directory.path().filename().string() + ".outside.jsonl", keyless);
    for (const char* name : {"a.jsonl", "deep/er/and/deeper/b.jsonl", "x.jsonl/c.jsonl", "bad\xff/\xfe.jsonl"}) {
        write(name, keyless);
    }
    write("edge.jsonl", keyless, kNow - kWeek);
    for (const char* none : {".hidden.jsonl", ".hidden/d.jsonl", "d.json", "d.JSONL", "d.jsonl.bak", "jsonl"}) {
        write(none, keyless);
    }
    write("old.jsonl", keyless, kNow - kWeek - 1us);
    write("empty.jsonl", "");
    fs::create_symlink(outside, m_directory / "link.jsonl");
    fs::create_directory_symlink(m_directory.path(), m_directory / "loop");
    ASSERT_EQ(::mkfifo((m_directory / "fifo.jsonl").c_str(), 0600), 0);
    write("secret/e.jsonl", keyless);
    write("unreadable.jsonl", keyless);
    fs::permissions(m_directory / "secret", fs::perms(0));
    fs::permissions(m_directory / "unreadable.jsonl", fs::perms(0));
    const std::size_t secret = ::geteuid() == 0 ? 2 : 0;  // nothing is secret to root

    EXPECT_EQ(scan().size(), 5 + secret);
    const TemporaryDirectory elsewhere;
    fs::create_directory_symlink(m_directory.path(), elsewhere / "link");
    EXPECT_EQ(LocalActivityScanner(elsewhere / "link", kWeek).scan(kNow).size(), 5 + secret);
    EXPECT_TRUE(LocalActivityScanner(elsewhere / "missing", kWeek).scan(kNow).empty());
    EXPECT_TRUE(LocalActivityScanner(m_directory / "a.jsonl", kWeek).scan(kNow).empty());
    EXPECT_EQ(scan().size(), 5 + secret);  // nothing is read twice
    fs::permissions(m_directory / "secret", fs::perms(0700));
    fs::remove(outside);
}

TEST_F(LocalActivityScannerTest, waitsForTheLineFeed) {
    const std::string line = Reply{}.line();
    // Cut everywhere: in front of, inside and behind the marker, before the line feed alone.
    for (std::size_t cut = 1; cut < line.size(); ++cut) {
        const TemporaryDirectory directory;
        LocalActivityScanner scanner(directory.path(), kWeek);
        const auto path = directory.write("a.jsonl", Reply{.id = "first"}.line() + line.substr(0, cut));
        touch(path, kNow);
        ASSERT_EQ(scanner.scan(kNow).size(), 1U);
        ASSERT_FALSE(scanner.update(kNow));
        append(path, line.substr(cut) + Reply{.id = "last"}.line());
        ASSERT_EQ(scanner.scan(kNow).size(), 3U) << cut;
    }
}

TEST_F(LocalActivityScannerTest, readsReplacedAndTruncatedFilesAgain) {
    const auto reply = [](const char* id) {
        return Reply{.id = id}.line();
    };
    const auto path = write("a.jsonl", reply("1") + reply("2"));
    EXPECT_EQ(scan().size(), 2U);
    write("a.jsonl", reply("3"));  // truncated and written anew: shorter than what was read
    EXPECT_EQ(scan().size(), 3U);
    write("new", reply("4") + reply("5") + reply("6") + reply("7"));
    fs::rename(m_directory / "new", path);  // another file, and longer
    EXPECT_EQ(scan().size(), 7U);
    fs::remove(path);
    EXPECT_EQ(scan().size(), 7U);
    write("a.jsonl", reply("8") + reply("9"));
    EXPECT_EQ(scan().size(), 9U);
    // An unfinished rest is overwritten, in the same length.
    const std::string rest = reply("10");
    append(path, rest.substr(0, rest.size() - 1) + "x");
    EXPECT_EQ(scan().size(), 9U);
    fs::resize_file(path, fs::file_size(path) - 1);
    append(path, "\n", kNow + 1s);
    EXPECT_EQ(scan().size(), 10U);
}

TEST_F(LocalActivityScannerTest, readsLinesOfAnyLengthUpToALimit) {
    constexpr std::size_t kBuffer = TranscriptReader::kBufferSize;
    constexpr std::size_t kLimit = TranscriptReader::kLongestLine;
    for (const std::size_t length : {kBuffer - 600, kBuffer, 2 * kBuffer + 1, kLimit, kLimit + 1}) {
        SCOPED_TRACE(length);
        Reply reply{.id = "long", .output = 77};
        reply.padding.assign(length + 1 - reply.line().size(), 'p');
        // The rest of the file has markers right before and behind, and once a line over the limit without one.
        std::string content = Reply{.id = "before", .output = 1}.line();
        content.append(kBuffer - 500, 'u').append("\n").append(reply.line());
        content.append(Reply{.id = "behind", .output = 2}.line());
        content.append(length == kLimit ? kLimit + 1 : 0, 'u').append("\n");
        content.append(Reply{.id = "last", .output = 3}.line());
        const TemporaryDirectory directory;
        touch(directory.write("a.jsonl", content), kNow);
        using Outputs = std::vector<std::int64_t>;
        EXPECT_EQ(outputs(LocalActivityScanner(directory.path(), kWeek).scan(kNow)),
                  length > kLimit ? Outputs({1, 2, 3}) : Outputs({1, 77, 2, 3}));
    }
    // The file ends shortly behind a bufferful, in the middle of a line.
    const std::string text = std::string(kBuffer - 60, 'u') + "\n" + Reply{}.line();
    const fs::path path = write("grown.jsonl", text.substr(0, kBuffer + 5));
    EXPECT_TRUE(scan().empty());
    append(path, text.substr(kBuffer + 5));
    EXPECT_EQ(scan().size(), 1U);
}

TEST_F(LocalActivityScannerTest, readsTheSameInOneGoAndInManySteps) {
    std::mt19937 random(3);
    std::string whole;
    for (int i = 0; i < 300; ++i) {
        const auto length = random() % 10 == 0 ? random() % 400'000 : random() % 3'000;
        whole += random() % 2 == 0 ? Reply{.id = std::to_string(random() % 200),
                                           .at = kNow - Seconds(random() % 5000),
                                           .output = 1 + static_cast<int>(random() % 100),
                                           .padding = std::string(length, 'y')}
                                         .line()
                                   : std::string(length, 'x') + "\n";
    }
    const TemporaryDirectory stepwise;
    LocalActivityScanner scanner(stepwise.path(), kWeek);
    const auto path = stepwise.write("a.jsonl", "");
    for (std::size_t at = 0; at < whole.size();) {
        const std::size_t length =
            std::min<std::size_t>(random() % 3 == 0 ? random() % 50 : random() % 600'000, whole.size() - at);
        append(path, std::string_view(whole).substr(at, length));
        at += length;
        scanner.update(kNow);
    }
    write("a.jsonl", whole);
    EXPECT_EQ(scanner.events(), m_scanner.scan(kNow));
}

TEST_F(LocalActivityScannerTest, sharesManyFilesBetweenThreads) {
    constexpr int kFiles = 40;
    const std::string bulk(400'000, ' ');
    std::vector<std::int64_t> expected;
    for (int i = 0; i < kFiles; ++i) {
        const Instant at = kNow - Seconds(kFiles - i);
        write(fmt::format("p{}/{:02}.jsonl", i % 3, i),
              Reply{.id = std::to_string(i), .at = at, .output = i + 1}.line() + bulk + "\n" +
                  Reply{.id = "same", .at = kNow}.line());
        expected.push_back(i + 1);
    }
    expected.push_back(10);
    std::uint64_t done = 0;
    std::uint64_t total = 0;
    const auto progress = [&](std::uint64_t bytesDone, std::uint64_t bytesTotal) {
        EXPECT_GE(bytesDone, std::exchange(done, bytesDone));
        total = bytesTotal;
    };
    EXPECT_THAT(outputs(m_scanner.scan(kNow, progress)), ElementsAreArray(expected));
    EXPECT_GT(done, 0U);
    EXPECT_LE(done, total);
    EXPECT_GT(total, kFiles * bulk.size());
    EXPECT_FALSE(m_scanner.update(kNow, progress));
}

TEST_F(LocalActivityScannerTest, survivesWritersAndOtherScans) {
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int i = 0; !isOver; ++i) {
            const std::string name = fmt::format("w{}.jsonl", i % 5);
            if (i % 7 == 0) {
                fs::remove(m_directory / name);
            } else {
                append(m_directory / name,
                       Reply{.id = std::to_string(i % 100)}.line().substr(0, i % 11 == 0 ? 50 : 9999));
            }
        }
    });
    std::thread other([&] {
        while (!isOver) {
            m_scanner.scan(kNow);
        }
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_LE(scan().size(), 100U);
    }
    isOver = true;
    writer.join();
    other.join();
}

TEST(LocalActivityScanner, looksWhereClaudeCodeIsConfigured) {
    const test::ScopedEnvironment home("HOME", "/home/ana");
    const std::pair<const char*, const char*> cases[] = {{nullptr, "/home/ana/.claude/projects"},
                                                         {"", "/home/ana/.claude/projects"},
                                                         {"~/code/claude", "/home/ana/code/claude/projects"}};
    for (const auto& [configured, root] : cases) {
        const test::ScopedEnvironment directory("CLAUDE_CONFIG_DIR", configured);
        EXPECT_EQ(LocalActivityScanner::defaultRoot(), root);
    }
}

}  // namespace
}  // namespace vorn
