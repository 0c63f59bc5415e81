#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorn {

/// Why asking the client gave no reading.
struct ProbeFailure {
    enum class Kind : std::uint8_t {
        launchFailed,        ///< detail: the system's reason
        commandFailed,       ///< detail: what the command printed
        unrecognizedOutput,  ///< detail: a snippet of the output
        claudeNotFound,
        timedOut,
        notSubscription,
        other,  ///< detail: the whole description; something on Vorn's own side
    };

    /// What is known beyond the kind.
    enum class Cause : std::uint8_t {
        unknown,
        notSignedIn,
        apiKey,              ///< With which there are no plan limits.
        noFiguresNow,        ///< The service refused the client, which has nothing that is recent enough.
        clientTooOld,        ///< It does not know what Vorn asks.
        interpreterMissing,  ///< subject: the name of what should run the client's script.
        folderMissing,       ///< The empty folder to run it in could not be made.
        saidWhy,             ///< subject: what the client said in the form that is for programs.
    };

    Kind kind = Kind::other;
    std::string detail{};  ///< As it came, with whatever control characters the client printed.
    Cause cause = Cause::unknown;
    std::string subject{};
    bool operator==(const ProbeFailure&) const = default;
};

/// As files spell it: "launchFailed", "commandFailed", …
const char* rawValue(ProbeFailure::Kind kind);
std::optional<ProbeFailure::Kind> probeFailureKind(std::string_view rawValue);
/// "notSignedIn", "noFiguresNow", …; "unknown".
const char* rawValue(ProbeFailure::Cause cause);
/// `unknown` for any other text.
ProbeFailure::Cause probeFailureCause(std::string_view rawValue);

/// What people are told: one sentence, and for some kinds the detail after it.
std::string description(const ProbeFailure& failure);

/// The failure with that description: what files kept before they kept kinds. `other` where the text is not known.
ProbeFailure failureDescribedAs(std::string_view description);

}  // namespace vorn
