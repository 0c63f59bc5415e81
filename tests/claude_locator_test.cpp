#include "core/usage_command/claude_locator.hpp"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using test::ScopedEnvironment;

TEST(ClaudeLocator, SearchPath) {
    const std::string kPlaces =
        "/Users/a/.local/bin:/Users/a/.claude/local:/opt/homebrew/bin:/usr/local/bin:/Users/a/.npm-global/bin:"
        "/Users/a/.bun/bin:/Users/a/.volta/bin:/usr/bin:/bin:/usr/sbin:/sbin";
    EXPECT_EQ(ClaudeLocator::searchPath(std::nullopt, "/Users/a"), kPlaces);
    EXPECT_EQ(ClaudeLocator::searchPath("::", "/Users/a"), kPlaces);
    EXPECT_EQ(ClaudeLocator::searchPath("/usr/bin:/opt/homebrew/bin::/usr/bin", "/Users/a"),
              "/usr/bin:/opt/homebrew/bin:/Users/a/.local/bin:/Users/a/.claude/local:/usr/local/bin:"
              "/Users/a/.npm-global/bin:/Users/a/.bun/bin:/Users/a/.volta/bin:/bin:/usr/sbin:/sbin");
    EXPECT_EQ(ClaudeLocator::candidateDirectories("/")[0], "/.local/bin");
}

class ClaudeLocatorTest : public testing::Test {
protected:
    test::TemporaryDirectory m_directory;
    ScopedEnvironment m_home{"HOME", (m_directory / "home").c_str()};
    ScopedEnvironment m_path{"PATH",
                             ((m_directory / "first").string() + ":" + (m_directory / "second").string()).c_str()};
};

TEST_F(ClaudeLocatorTest, FindsTheFirstExecutableFile) {
    EXPECT_EQ(ClaudeLocator::locate(std::nullopt), std::nullopt);

    const fs::path usual = m_directory.executable("home/.claude/local/claude", "");
    EXPECT_EQ(ClaudeLocator::locate(std::nullopt), usual);

    fs::create_directories(m_directory / "first/claude");
    m_directory.write("second/claude", "not executable");
    EXPECT_EQ(ClaudeLocator::locate(""), usual);

    fs::remove_all(m_directory / "first/claude");
    fs::create_symlink(usual, m_directory / "first/claude");
    EXPECT_EQ(ClaudeLocator::locate(std::nullopt), m_directory / "first/claude");
    fs::remove(usual);
    EXPECT_EQ(ClaudeLocator::locate(std::nullopt), std::nullopt);
}

TEST_F(ClaudeLocatorTest, TrustsTheChoiceOfTheUser) {
    m_directory.executable("first/claude", "");
    const fs::path chosen = m_directory.executable("home/bin/claude", "");
    const fs::path text = m_directory.write("home/bin/text", "");

    EXPECT_EQ(ClaudeLocator::locate("~/bin/claude"), chosen);
    EXPECT_EQ(ClaudeLocator::locate(chosen.string()), chosen);
    for (const std::string& wrong :
         {text.string(), std::string("~/bin"), std::string("~/bin/none"), std::string(" ")}) {
        EXPECT_EQ(ClaudeLocator::locate(wrong), std::nullopt) << wrong;
    }
}

}  // namespace
}  // namespace vorn
