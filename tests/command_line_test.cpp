#include "app/command_line.hpp"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorn {
namespace {

using testing::HasSubstr;
using Parsed = std::variant<LaunchRequest, CommandLineAnswer>;

Parsed parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vorn");
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, TellsWhatIsWanted) {
    EXPECT_EQ(parse({}), Parsed(LaunchRequest{}));
    EXPECT_EQ(parse({"--show-dashboard"}), Parsed(LaunchRequest{.showDashboard = true}));
    EXPECT_EQ(parse({"--show-popover"}), Parsed(LaunchRequest{.showPopover = true}));
    EXPECT_EQ(parse({"--demo", "planned-reset", "--snapshot", "some dir"}),
              Parsed(LaunchRequest{.demo = demo::Scenario::plannedReset, .snapshot = "some dir"}));
}

TEST(CommandLine, AnswersWithoutStartingAnything) {
    const struct {
        std::vector<const char*> arguments;
        int status;
        const char* output;
        const char* error;
    } cases[] = {
        {{"--version"}, 0, "vorn ", ""},
        {{"--help"}, 0, "comfortable, watch, at-risk, limited, planned-reset", ""},
        {{"--bogus"}, 2, "", "--bogus\nRun vorn --help for more.\n"},
        {{"--demo", "lucky"}, 2, "", "lucky"},
        {{"--demo"}, 2, "", "--demo"},
        {{"--snapshot", ""}, 2, "", "--snapshot"},
        {{"file"}, 2, "", "file"},
    };
    for (const auto& [arguments, status, output, error] : cases) {
        SCOPED_TRACE(arguments.front());
        const auto parsed = parse(arguments);
        const auto* answer = std::get_if<CommandLineAnswer>(&parsed);
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer->exitStatus, status);
        EXPECT_THAT(answer->output, HasSubstr(output));
        EXPECT_THAT(answer->error, HasSubstr(error));
        EXPECT_EQ(answer->output.empty(), status != 0);
    }
}

}  // namespace
}  // namespace vorn
