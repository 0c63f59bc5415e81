#include "core/status_line/integration_record.hpp"

#include <cstdlib>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.hpp"

namespace {
int g_thrown = 0;
}

/// Counts what is thrown in this program: the relay is linked statically, and there the first exception takes longer
/// than all the rest of its work. Under a name of its own, since compilers declare this function themselves, and not
/// alike.
void countThrown(void* object, void* type, void (*destroy)(void*)) __asm__("__cxa_throw");
void countThrown(void* object, void* type, void (*destroy)(void*)) {
    ++g_thrown;
    reinterpret_cast<void (*)(void*, void*, void (*)(void*))>(::dlsym(RTLD_NEXT, "__cxa_throw"))(object, type, destroy);
    std::abort();
}

namespace vorn {
namespace {

TEST(IntegrationRecord, GivesTheDownstreamCommandOnlyWhenAllIsWell) {
    const std::string date = R"("installedAt":"2026-11-22T20:45:00Z")";
    const struct {
        const char* name;
        std::string record;
        std::optional<std::string> command;
    } cases[] = {
        {"a command", R"({"originalStatusLine":{"type":"command","command":"~/bin/line.sh","padding":0},)" + date + "}",
         "~/bin/line.sh"},
        {"with escapes", R"({"originalStatusLine":{"command":"printf \"\\u00e9 \u00e9\n\""},)" + date + "}",
         "printf \"\\u00e9 \u00e9\n\""},
        {"none of their own", "{" + date + "}", std::nullopt},
        {"a relay", R"({"originalStatusLine":{"command":"nice /opt/vorn-bridge --chain"},)" + date + "}", std::nullopt},
        {"a number beyond all measure", R"({"originalStatusLine":{"command":"echo","padding":1e999},)" + date + "}",
         "echo"},
        {"a key twice", R"({"originalStatusLine":{"command":"echo"},)" + date + "," + date + "}", std::nullopt},
        {"no object", R"({"originalStatusLine":["echo"],)" + date + "}", std::nullopt},
        {"no command", R"({"originalStatusLine":{"type":"command"},)" + date + "}", std::nullopt},
        {"no text", R"({"originalStatusLine":{"command":7},)" + date + "}", std::nullopt},
        {"no date", R"({"originalStatusLine":{"command":"echo"}})", std::nullopt},
        {"no such date", R"({"originalStatusLine":{"command":"echo"},"installedAt":"yesterday"})", std::nullopt},
        {"truncated", R"({"originalStatusLine":{"command":"ec)", std::nullopt},
        {"a list", "[]", std::nullopt},
        {"deep", std::string(1'000'000, '['), std::nullopt},
        {"empty", "", std::nullopt},
    };
    const test::TemporaryDirectory dir;
    const auto thrownBefore = g_thrown;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(downstreamCommand(dir.write("integration.json", c.record)), c.command);
    }
    EXPECT_EQ(downstreamCommand(dir / "missing.json"), std::nullopt);
    EXPECT_EQ(downstreamCommand(dir.path()), std::nullopt);
    EXPECT_EQ(g_thrown, thrownBefore);
}

}  // namespace
}  // namespace vorn
