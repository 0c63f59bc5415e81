#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/data/window_kind.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// One thing that happened to one instance of a limit.
struct Outcome {
    enum class Event : std::uint8_t {
        reachedLimit,
        resetEarly,  ///< The used share fell long before the announced reset.
        moved,       ///< The reset time changed, and nothing else.
        landed,      ///< The instance ended.
    };
    /// How it is known.
    enum class Origin : std::uint8_t {
        reading,      ///< From figures, so some time after it happened.
        refusedTurn,  ///< The service refused a turn: to the second.
    };

    Event event = Event::landed;
    WindowKind kind;
    Instant at;                             ///< When it happened, as far as that is known; `landed`: the reset itself.
    std::optional<Instant> resetsAt{};      ///< When the instance was to end, as it was known before.
    std::optional<Instant> nextResetsAt{};  ///< `moved`, `resetEarly`: what came in its place.
    /// 0.. as reported. Of `landed` and `resetEarly` the last share before it.
    double usedPercent = 0;
    std::optional<Instant> readAt{};  ///< When that share was true.
    Origin origin = Origin::reading;

    /// The same thing, told once more, by another program or from another source.
    [[nodiscard]] bool isSameAs(const Outcome& other) const;

    bool operator==(const Outcome&) const = default;
};

/// As files spell it: "reachedLimit", "resetEarly", "moved", "landed".
const char* rawValue(Outcome::Event event);

/// One JSON object without a line feed: "e" the event, "k" the kind, "t" when it happened, "r" and "n" the reset times,
/// "u" the used percent, "s" when that was read, "o" the origin where it is no reading. Times are seconds since 1970.
std::string encodeOutcome(const Outcome& outcome);
/// Empty for anything that is no such line; unknown members are ignored.
std::optional<Outcome> decodeOutcome(std::string_view line);

/// What happened in the last year, one line a thing, in the order of time. Several programs add to it.
class OutcomeStore {
public:
    static constexpr Seconds retention{366 * 86400.0};

    explicit OutcomeStore(std::filesystem::path file) : m_file(std::move(file)) {}

    /// Empty when the file is missing or cannot be read; lines that are damaged are skipped.
    [[nodiscard]] std::vector<Outcome> load() const;

    /// Adds what is not known yet; what is told again keeps the more exact moment. Writes only when something is new,
    /// and lets go of what is older than a year. False when it could not be written: the file is then as it was.
    bool add(std::span<const Outcome> outcomes, Instant now,
             std::chrono::milliseconds patience = std::chrono::milliseconds{50}) const;

private:
    std::filesystem::path m_file;
};

/// Adds to `known`, by time, what it does not have; true when that changed anything.
bool mergeOutcomes(std::vector<Outcome>& known, std::span<const Outcome> more);

}  // namespace vorn
