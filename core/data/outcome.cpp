#include "core/data/outcome.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/data/refused_turn.hpp"
#include "core/data/usage_window.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace {

using nlohmann::json;

constexpr std::size_t kLargestFile = std::size_t{4} << 20U;  // bytes: a hundred things a day for a year
constexpr std::array kEvents{"reachedLimit", "resetEarly", "moved", "landed"};
constexpr const char* kRefusedTurn = "refusedTurn";

void putTime(json& object, const char* key, std::optional<Instant> instant) {
    if (instant) {
        object[key] = secondsSince1970(*instant);
    }
}

std::optional<Instant> timeIn(const json& object, const char* key) {
    const json* const value = findMember(object, key);
    return value != nullptr ? std::optional(instantSince1970(decodeNumber(*value))) : std::nullopt;
}

Outcome::Event eventNamed(const std::string& name) {
    const auto found = std::ranges::find(kEvents, std::string_view(name));
    if (found == kEvents.end()) {
        throw DecodingError("unknown event");
    }
    return static_cast<Outcome::Event>(found - kEvents.begin());
}

WindowKind kindNamed(const std::string& key) {
    auto kind = WindowKind::fromKey(key);
    if (!kind) {
        throw DecodingError("unknown kind");
    }
    return *std::move(kind);
}

Outcome decode(const json& object) {
    Outcome outcome{.event = eventNamed(decodeText(requireMember(object, "e"))),
                    .kind = kindNamed(decodeText(requireMember(object, "k"))),
                    .at = instantSince1970(decodeNumber(requireMember(object, "t"))),
                    .resetsAt = timeIn(object, "r"),
                    .nextResetsAt = timeIn(object, "n"),
                    .usedPercent = decodeNumber(requireMember(object, "u")),
                    .readAt = timeIn(object, "s")};
    const json* const origin = findMember(object, "o");
    if (origin != nullptr && origin->is_string() && *origin == kRefusedTurn) {
        outcome.origin = Outcome::Origin::refusedTurn;
    }
    return outcome;
}

std::vector<Outcome> decodeLines(std::string_view text) {
    std::vector<Outcome> outcomes;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (auto outcome = decodeOutcome(text.substr(0, end))) {
            outcomes.push_back(*std::move(outcome));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    std::ranges::stable_sort(outcomes, {}, &Outcome::at);
    return outcomes;
}

bool isMoreExact(const Outcome& one, const Outcome& other) {
    return one.event == Outcome::Event::reachedLimit && one.at < other.at;
}

}  // namespace

const char* rawValue(Outcome::Event event) {
    return kEvents.at(static_cast<std::size_t>(event));
}

bool Outcome::isSameAs(const Outcome& other) const {
    if (event != other.event || kind != other.kind) {
        return false;
    }
    const bool isOncePerInstance = event == Event::reachedLimit || event == Event::landed;
    if (isOncePerInstance && resetsAt && other.resetsAt) {
        return sameReset(resetsAt, other.resetsAt);
    }
    return sameReset(at, other.at);
}

std::vector<Outcome> outcomesOf(std::span<const RefusedTurn> refusals) {
    std::vector<Outcome> reached;
    for (const RefusedTurn& refusal : refusals) {
        reached.push_back({.event = Outcome::Event::reachedLimit,
                           .kind = refusal.kind,
                           .at = refusal.at,
                           .resetsAt = refusal.resetsAt,
                           .usedPercent = 100,
                           .readAt = refusal.at,
                           .origin = Outcome::Origin::refusedTurn});
    }
    return reached;
}

std::string encodeOutcome(const Outcome& outcome) {
    json object = {{"e", rawValue(outcome.event)},
                   {"k", outcome.kind.key()},
                   {"t", secondsSince1970(outcome.at)},
                   {"u", outcome.usedPercent}};
    putTime(object, "r", outcome.resetsAt);
    putTime(object, "n", outcome.nextResetsAt);
    putTime(object, "s", outcome.readAt);
    if (outcome.origin == Outcome::Origin::refusedTurn) {
        object["o"] = kRefusedTurn;
    }
    return dumpJson(object);
}

std::optional<Outcome> decodeOutcome(std::string_view line) try {
    const auto object = parseJson(line);
    return object ? std::optional(decode(*object)) : std::nullopt;
} catch (const DecodingError&) {
    return std::nullopt;
}

bool mergeOutcomes(std::vector<Outcome>& known, std::span<const Outcome> more) {
    bool isChanged = false;
    for (const Outcome& outcome : more) {
        const auto same = std::ranges::find_if(known, [&](const Outcome& each) { return each.isSameAs(outcome); });
        if (same == known.end()) {
            known.push_back(outcome);
            isChanged = true;
        } else if (isMoreExact(outcome, *same)) {
            *same = outcome;
            isChanged = true;
        }
    }
    std::ranges::stable_sort(known, {}, &Outcome::at);
    return isChanged;
}

std::vector<Outcome> OutcomeStore::load() const {
    return decodeLines(readFile(m_file, kLargestFile).value_or(std::string()));
}

bool OutcomeStore::add(std::span<const Outcome> outcomes, Instant now, std::chrono::milliseconds patience) const try {
    std::vector<Outcome> known = load();
    if (!mergeOutcomes(known, outcomes)) {
        return true;
    }
    const FileLock lock = FileLock::beside(m_file, patience);
    known = decodeLines(readToReplace(m_file, kLargestFile).value_or(std::string()));
    mergeOutcomes(known, outcomes);
    std::erase_if(known, [&](const Outcome& outcome) { return outcome.at < now - retention; });
    std::string text;
    for (const Outcome& outcome : known) {
        text += encodeOutcome(outcome) + "\n";
    }
    removeAbandonedTemporaries(m_file);
    replaceFile(m_file, text);
    return true;
} catch (const std::filesystem::filesystem_error&) {
    return false;
}

}  // namespace vorn
