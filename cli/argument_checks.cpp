#include "cli/argument_checks.hpp"

#include "cli/span_argument.hpp"

namespace vorn::cli {

void addNowOption(CLI::App& command, std::optional<Instant>& now) {
    command
        .add_option_function<std::string>(
            "--now",
            [&now](const std::string& text) {
                now = parseIso8601(text, Fraction::optional);
                if (!now) {
                    throw CLI::ValidationError("--now", "expected a moment such as 2026-11-22T20:45:00Z, not " + text);
                }
            },
            "Take this moment as now and record nothing (2026-11-22T20:45:00Z)")
        ->type_name("INSTANT");
}

void addRootOption(CLI::App& command, std::string& configDirectory) {
    command.add_option("--root", configDirectory, "Claude Code's configuration directory, if another")
        ->type_name("DIR");
}

CLI::Option* addSpanOption(CLI::App& command, const std::string& names, Seconds& span, const std::string& description) {
    return command
        .add_option_function<std::string>(
            names,
            [&span, names](const std::string& text) {
                const auto parsed = parseSpan(text);
                if (!parsed) {
                    throw CLI::ValidationError(names, "expected a span such as 90m, 24h or 7d, not " + text);
                }
                span = *parsed;
            },
            description)
        ->type_name("SPAN");
}

}  // namespace vorn::cli
