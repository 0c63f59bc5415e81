// Scans a generated corpus and compares with the generator's own result. VORN_TEST_CORPUS names a larger corpus to use
// instead: a directory with "projects" and "manifest.json".

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/transcripts/local_activity_scanner.hpp"
#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

/// As the generator writes them.
nlohmann::json sums(const std::vector<ActivityEvent>& events) {
    TokenCounts all;
    double sixtieths = 0;
    for (const ActivityEvent& event : events) {
        all += event.tokens;
        sixtieths += event.tokens.weightSixtieths(event.model);
    }
    return {{"events", events.size()},
            {"input", all.input},
            {"output", all.output},
            {"cache_read", all.cacheRead},
            {"cache_write_5m", all.cacheWrite5m},
            {"cache_write_1h", all.cacheWrite1h},
            {"weight_x60", static_cast<std::int64_t>(sixtieths)}};
}

class ActivityCorpusTest : public testing::Test {
protected:
    void SetUp() override {
        if (const auto given = environmentValue("VORN_TEST_CORPUS")) {
            m_corpus = *given;
        } else if (std::system("python3 -c '' 2> /dev/null") != 0) {  // NOLINT(bugprone-command-processor): fixed text
            GTEST_SKIP() << "the generator needs python3";
        } else {
            const std::string command = fmt::format("python3 '{}' '{}' --bytes 3M --days 14 --seed 4",
                                                    VORN_CORPUS_GENERATOR, m_corpus.string());
            ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT(bugprone-command-processor): our own paths
        }
        const auto manifest = nlohmann::json::parse(test::readAll(m_corpus / "manifest.json"));
        m_now = parseIso8601(manifest.at("now").get<std::string>(), Fraction::optional).value();
        m_expected = manifest.at("expected");
    }

    void expectAgreement(const std::vector<ActivityEvent>& events) const {
        const nlohmann::json found = sums(events);
        for (const auto& [name, value] : found.items()) {
            EXPECT_EQ(value, m_expected.at(name)) << name;
        }
    }

    test::TemporaryDirectory m_directory;
    fs::path m_corpus = m_directory / "corpus";
    Instant m_now;
    nlohmann::json m_expected;
    static constexpr Seconds kLookback = std::chrono::days{7};
};

TEST_F(ActivityCorpusTest, agreesWithTheGenerator) {
    LocalActivityScanner scanner(m_corpus / "projects", kLookback);
    expectAgreement(scanner.scan(m_now));
    EXPECT_FALSE(scanner.update(m_now));
}

TEST_F(ActivityCorpusTest, agreesWhenTheFilesGrowBetweenScans) {
    const fs::path root = m_directory / "growing";
    LocalActivityScanner scanner(root, kLookback);
    std::mt19937_64 random(9);
    std::vector<fs::path> unfinished;
    for (const auto& entry : fs::recursive_directory_iterator(m_corpus / "projects")) {
        if (entry.is_regular_file()) {
            unfinished.push_back(fs::relative(entry.path(), m_corpus / "projects"));
        }
    }
    while (!unfinished.empty()) {
        // Every file gets a random part of what it lacks, seldom up to the end of a line.
        std::erase_if(unfinished, [&](const fs::path& name) {
            const fs::path from = m_corpus / "projects" / name;
            const fs::path to = root / name;
            fs::create_directories(to.parent_path());
            const std::uint64_t done = fs::exists(to) ? fs::file_size(to) : 0;
            const std::uint64_t lacking = fs::file_size(from) - done;
            const std::uint64_t step = lacking < 5000 ? lacking : random() % lacking;
            std::string part(step, '\0');
            std::ifstream source(from, std::ios::binary);
            source.seekg(static_cast<std::streamoff>(done));
            source.read(part.data(), static_cast<std::streamsize>(step));
            std::ofstream(to, std::ios::binary | std::ios::app) << part;
            fs::last_write_time(to, fs::last_write_time(from));
            return step == lacking;
        });
        scanner.update(m_now);
    }
    expectAgreement(scanner.events());
}

}  // namespace
}  // namespace vorn
