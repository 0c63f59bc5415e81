#include "core/support/file.hpp"

#include <csignal>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::ScopedEnvironment;
using test::TemporaryDirectory;

/// How many entries there are.
std::ptrdiff_t countIn(const fs::path& directory) {
    return std::distance(fs::directory_iterator(directory), {});
}

fs::perms modeOf(const fs::path& path) {
    return fs::status(path).permissions();
}

TEST(ReplaceFile, createsPrivateFilesAndKeepsTheModeOfOthers) {
    const TemporaryDirectory dir;
    replaceFile(dir / "new", "one");
    EXPECT_EQ(modeOf(dir / "new"), fs::perms(0600));
    ::chmod((dir / "new").c_str(), 0644);
    replaceFile(dir / "new", "two");
    EXPECT_EQ(modeOf(dir / "new"), fs::perms(0644));
    EXPECT_EQ(test::readAll(dir / "new"), "two");
    EXPECT_EQ(countIn(dir.path()), 1);
}

TEST(ReplaceFile, leavesTheOldFileWhenItIsNoLongerWanted) {
    const TemporaryDirectory dir;
    const fs::path file = dir.write("file", "old");
    EXPECT_FALSE(replaceFile({.path = file, .content = "new", .isStillWanted = [] {
                                  return false;
                              }}));
    EXPECT_EQ(test::readAll(file), "old");
    EXPECT_EQ(countIn(dir.path()), 1);
    EXPECT_TRUE(replaceFile({.path = file, .content = "new", .isStillWanted = [&] {
                                 return test::readAll(file) == "old";
                             }}));
    EXPECT_EQ(test::readAll(file), "new");

    ::chmod(file.c_str(), 0640);
    replaceFile({.path = dir / "copy", .content = "new", .model = file});
    EXPECT_EQ(modeOf(dir / "copy"), fs::perms(0640));
    replaceFile({.path = dir / "copy", .content = "new", .mode = 0700});
    EXPECT_EQ(modeOf(dir / "copy"), fs::perms(0700));
    fs::create_symlink(file, dir / "link");
    replaceFile({.path = dir / "link", .content = "own", .followsLinks = false});
    EXPECT_FALSE(fs::is_symlink(dir / "link"));
    EXPECT_EQ(test::readAll(file), "new");
}

TEST(RequireFile, tellsAMissingFileFromAnUnreadableOne) {
    const TemporaryDirectory dir;
    const auto reasonFor = [](const fs::path& path, std::size_t limit) {
        try {
            requireFile(path, limit);
        } catch (const fs::filesystem_error& error) {
            return error.code();
        }
        return std::error_code{};
    };
    EXPECT_EQ(reasonFor(dir / "missing", 9), std::errc::no_such_file_or_directory);
    EXPECT_EQ(reasonFor(dir.path(), 9), std::errc::is_a_directory);
    EXPECT_EQ(reasonFor(dir.write("large", "0123456789"), 9), std::errc::file_too_large);
    EXPECT_EQ(reasonFor(dir / "large" / "inside", 9), std::errc::not_a_directory);
    EXPECT_EQ(requireFile(dir / "large"), "0123456789");
}

TEST(ReplaceFile, writesThroughChainsOfLinks) {
    const TemporaryDirectory dir;
    dir.write("real/settings.json", "old");
    fs::create_symlink("real/settings.json", dir / "second");
    fs::create_symlink(dir / "second", dir / "first");
    replaceFile(dir / "first", "new");
    EXPECT_TRUE(fs::is_symlink(dir / "first"));
    EXPECT_EQ(test::readAll(dir / "real/settings.json"), "new");

    fs::create_symlink("real/missing.json", dir / "dangling");
    replaceFile(dir / "dangling", "made");
    EXPECT_EQ(test::readAll(dir / "real/missing.json"), "made");

    fs::create_symlink("loop", dir / "loop");
    EXPECT_THROW(replaceFile(dir / "loop", "x"), fs::filesystem_error);
}

TEST(ReplaceFile, leavesTheOldContentWhenItFails) {
    const TemporaryDirectory dir;
    dir.write("file", "old");
    EXPECT_THROW(replaceFile(dir / "missing/file", "x"), fs::filesystem_error);
    fs::create_directory(dir / "folder");
    EXPECT_THROW(replaceFile(dir / "folder", "x"), fs::filesystem_error);

    // A file size limit fails the write half-way, as a full disk does.
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_THROW(replaceFile(dir / "file", std::string(5000, 'x')), fs::filesystem_error);
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(test::readAll(dir / "file"), "old");
    EXPECT_EQ(countIn(dir.path()), 2);
}

TEST(ReadFile, refusesWhatIsNotARegularFileOfBearableSize) {
    const TemporaryDirectory dir;
    dir.write("file", "content");
    EXPECT_EQ(readFile(dir / "file"), "content");
    EXPECT_EQ(readFile(dir / "file", 3), std::nullopt);
    EXPECT_EQ(readFile(dir / "missing"), std::nullopt);
    EXPECT_EQ(readFile(dir.path()), std::nullopt);
    ASSERT_EQ(::mkfifo((dir / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(readFile(dir / "fifo"), std::nullopt);
}

TEST(CreatePrivateDirectories, makesMissingParentsForTheUserAlone) {
    const TemporaryDirectory dir;
    createPrivateDirectories(dir / "a/b/c/");
    EXPECT_EQ(modeOf(dir / "a"), fs::perms(0700));
    EXPECT_EQ(modeOf(dir / "a/b/c"), fs::perms(0700));
    createPrivateDirectories(dir / "a/b");
    dir.write("file", "");
    EXPECT_THROW(createPrivateDirectories(dir / "file/below"), fs::filesystem_error);
}

TEST(HomeDirectory, comesFromTheEnvironmentOrThePasswordDatabase) {
    const ScopedEnvironment home("HOME", "/home/ana//");
    EXPECT_EQ(homeDirectory(), "/home/ana");
    EXPECT_EQ(expandTilde("~/tmp/v"), "/home/ana/tmp/v");
    EXPECT_EQ(expandTilde("~other/x"), "~other/x");
    EXPECT_EQ(expandTilde("/a/~/b"), "/a/~/b");
    const ScopedEnvironment unset("HOME", nullptr);
    EXPECT_TRUE(homeDirectory().is_absolute());
}

TEST(FileLock, excludesUntilReleased) {
    const TemporaryDirectory dir;
    {
        const auto held = FileLock::acquire(dir / "lock", 0ms);
        ASSERT_TRUE(held);
        EXPECT_FALSE(FileLock::acquire(dir / "lock", 5ms));
    }
    EXPECT_TRUE(FileLock::acquire(dir / "lock", 0ms));
    EXPECT_FALSE(FileLock::acquire(dir / "missing/lock", 0ms));
}

}  // namespace
}  // namespace vorn
