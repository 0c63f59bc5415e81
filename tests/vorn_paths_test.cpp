#include "core/data/vorn_paths.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temporary_directory.hpp"

namespace vorn {
namespace {

using test::ScopedEnvironment;
using test::TemporaryDirectory;

TEST(VornPaths, followTheEnvironmentAtOnce) {
    const ScopedEnvironment home("HOME", "/home/ana");
    const ScopedEnvironment dataHome("XDG_DATA_HOME", nullptr);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {nullptr, nullptr, "/home/ana/.local/share/Vorn/history.jsonl"},
        {"", nullptr, "/home/ana/.local/share/Vorn/history.jsonl"},
        {nullptr, "/data", "/data/Vorn/history.jsonl"},
        {nullptr, "", "/home/ana/.local/share/Vorn/history.jsonl"},
        {nullptr, "relative", "/home/ana/.local/share/Vorn/history.jsonl"},
        {"~/tmp/v", "/data", "/home/ana/tmp/v/history.jsonl"},
        {"/exact", "/data", "/exact/history.jsonl"}};
    for (const auto& [vornHome, xdgDataHome, history] : cases) {
        const ScopedEnvironment first("VORN_HOME", vornHome);
        const ScopedEnvironment xdg("XDG_DATA_HOME", xdgDataHome);
        EXPECT_EQ(VornPaths::history(), history);
    }
}

TEST(VornPaths, overrideWinsAndIsMadePrivate) {
    const TemporaryDirectory dir;
    const ScopedEnvironment vornHome("VORN_HOME", "/elsewhere");
    VornPaths::setRootOverride(dir / "root");
    EXPECT_EQ(VornPaths::bridgeExecutable(), dir / "root/bin/vorn-bridge");
    VornPaths::ensureRoot();
    struct stat status {};
    ASSERT_EQ(::stat((dir / "root").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    EXPECT_TRUE(std::filesystem::is_directory(VornPaths::probeWorkingDirectory()));
    EXPECT_EQ(VornPaths::probeWorkingDirectory(), dir / "root/probe");

    // Without a place to create it the path is still told; starting the process there reports the reason.
    VornPaths::setRootOverride(dir.write("file", ""));
    EXPECT_EQ(VornPaths::probeWorkingDirectory(), dir / "file/probe");
    EXPECT_THROW(VornPaths::ensureRoot(), std::filesystem::filesystem_error);
    VornPaths::setRootOverride(std::nullopt);
    EXPECT_EQ(VornPaths::root(), "/elsewhere");
}

}  // namespace
}  // namespace vorn
