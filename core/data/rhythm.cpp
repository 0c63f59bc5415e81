#include "core/data/rhythm.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <span>

#include "core/support/json.hpp"

namespace vorn {
namespace {

constexpr std::int64_t kVersion = 1;
constexpr double kMostSum = 1e15;                   // far beyond anything real, far within what a double counts
constexpr std::int64_t kFurthestHour = 20'000'000;  // since 1970: two thousand years
constexpr std::size_t kSixDigits = 32;

double sixDigits(double value) {
    std::array<char, kSixDigits> text{};
    std::snprintf(text.data(), text.size(), "%.6g", value);
    return std::strtod(text.data(), nullptr);
}

nlohmann::json encodeSums(std::initializer_list<double> sums) {
    auto array = nlohmann::json::array();
    for (const double sum : sums) {
        array.push_back(sixDigits(sum));
    }
    return array;
}

nlohmann::json encode(const Rhythm::Reading& reading) {
    return {{"u", reading.usedPercent},
            {"r", encodeDate(reading.resetsAt, DateCoding::secondsSince1970)},
            {"t", encodeDate(reading.observedAt, DateCoding::secondsSince1970)}};
}

/// Sums from an array of at least as many; false where it is none.
bool decodeSums(const nlohmann::json* array, std::initializer_list<double*> sums) {
    if (array == nullptr || !array->is_array() || array->size() < sums.size()) {
        return false;
    }
    const auto isSum = [](const nlohmann::json& value) {
        return value.is_number() && value.get<double>() >= 0 && value.get<double>() <= kMostSum;
    };
    if (!std::all_of(array->begin(), array->begin() + static_cast<std::ptrdiff_t>(sums.size()), isSum)) {
        return false;
    }
    std::size_t i = 0;
    for (double* sum : sums) {
        *sum = (*array)[i++].get<double>();
    }
    return true;
}

std::optional<std::int64_t> decodeHour(const nlohmann::json& value) {
    try {
        const std::int64_t hour = decodeInteger(value);
        return std::abs(hour) <= kFurthestHour ? std::optional(hour) : std::nullopt;
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

std::optional<Instant> decodeInstant(const nlohmann::json& object, const char* key) {
    const auto* value = findMember(object, key);
    if (value == nullptr || !value->is_number() || !(std::abs(value->get<double>()) <= kFurthestHour * 3600.0)) {
        return std::nullopt;
    }
    return instantSince1970(value->get<double>());
}

std::optional<Rhythm::Reading> decodeReading(const nlohmann::json* value) {
    if (value == nullptr || !value->is_object()) {
        return std::nullopt;
    }
    const auto* used = findMember(*value, "u");
    const auto resetsAt = decodeInstant(*value, "r");
    const auto observedAt = decodeInstant(*value, "t");
    if (used == nullptr || !used->is_number() || !(used->get<double>() >= 0) || used->get<double>() > 1000 ||
        !resetsAt || !observedAt) {
        return std::nullopt;
    }
    return Rhythm::Reading{used->get<double>(), *resetsAt, *observedAt};
}

/// The newest `most` entries of a list whose elements begin with a number; `decode` makes one of an element.
template <typename Entry, typename Decode>
std::vector<Entry> decodeNumbered(const nlohmann::json* list, std::size_t most, const Decode& decode) {
    std::vector<Entry> entries;
    if (list == nullptr || !list->is_array()) {
        return entries;
    }
    for (const auto& element : *list) {
        if (!element.is_array() || element.empty()) {
            continue;
        }
        Entry entry;
        const auto number = decodeHour(element.front());
        if (number && decode(element, entry)) {
            entry.number = *number;
            entries.push_back(entry);
        }
    }
    std::ranges::stable_sort(entries, {}, &Entry::number);
    // Not ranges::unique, whose result clang 14 cannot compile.
    const auto isRepeated = [](const Entry& one, const Entry& next) {
        return one.number == next.number;
    };
    entries.erase(std::unique(entries.begin(), entries.end(), isRepeated), entries.end());
    if (entries.size() > most) {
        entries.erase(entries.begin(), entries.end() - static_cast<std::ptrdiff_t>(most));
    }
    return entries;
}

void decodeModels(const nlohmann::json* models, Rhythm& rhythm) {
    if (models == nullptr || !models->is_object()) {
        return;
    }
    for (const auto& [key, value] : models->items()) {
        Rhythm::Model model;
        if (rhythm.models.size() < Rhythm::kMostModels && key.size() <= Rhythm::kLongestModelKey && value.is_object() &&
            decodeSums(findMember(value, "sums"), {&model.points, &model.weekPoints})) {
            model.last = decodeReading(findMember(value, "last"));
            rhythm.models.emplace(key, model);
        }
    }
}

void decodeHours(const nlohmann::json* hours, Rhythm& rhythm) {
    if (hours == nullptr || !hours->is_array() || hours->size() != Rhythm::kHours) {
        return;
    }
    for (std::size_t i = 0; i < Rhythm::kHours; ++i) {
        Rhythm::Hour hour;
        if (decodeSums(&(*hours)[i], {&hour.seen, &hour.points, &hour.weight, &hour.active})) {
            rhythm.hours[i] = hour;
        }
    }
}

void decodeLists(const nlohmann::json& document, Rhythm& rhythm) {
    decodeHours(findMember(document, "hours"), rhythm);
    rhythm.days = decodeNumbered<Rhythm::Day>(
        findMember(document, "days"), Rhythm::kMostDays, [](const nlohmann::json& element, Rhythm::Day& day) {
            double number = 0;
            return element.size() == 4 && decodeSums(&element, {&number, &day.seenHours, &day.points, &day.weight});
        });
    rhythm.recent = decodeNumbered<Rhythm::RecentHour>(
        findMember(document, "recent"), Rhythm::kMostRecent,
        [](const nlohmann::json& element, Rhythm::RecentHour& hour) {
            double number = 0;
            return element.size() == 2 && decodeSums(&element, {&number, &hour.points});
        });
    decodeModels(findMember(document, "models"), rhythm);
}

}  // namespace

std::string encodeRhythm(const Rhythm& rhythm) {
    const auto& [sessionPoints, weekPoints, localPoints, localWeight, elsewherePoints] = rhythm.exchange;
    nlohmann::json document = {
        {"version", kVersion},
        {"sessions", encodeSums({rhythm.sessions.count, rhythm.sessions.landed, rhythm.sessions.full})},
        {"exchange", encodeSums({sessionPoints, weekPoints, localPoints, localWeight, elsewherePoints})},
        {"weeks", encodeSums({rhythm.weeks, rhythm.fullWeeks})},
        {"watched", encodeSums({rhythm.weekPointsWatched, rhythm.weightWatched})},
        {"before", encodeSums({rhythm.weightBefore, rhythm.hoursBefore})},
    };
    for (const auto& hour : rhythm.hours) {
        document["hours"].push_back(encodeSums({hour.seen, hour.points, hour.weight, hour.active}));
    }
    for (const auto& day : rhythm.days) {
        document["days"].push_back(
            {day.number, sixDigits(day.seenHours), sixDigits(day.points), sixDigits(day.weight)});
    }
    for (const auto& hour : rhythm.recent) {
        document["recent"].push_back({hour.number, sixDigits(hour.points)});
    }
    for (const auto& [key, model] : rhythm.models) {
        auto& value = document["models"][key];
        value["sums"] = encodeSums({model.points, model.weekPoints});
        if (model.last) {
            value["last"] = encode(*model.last);
        }
    }
    for (const auto& [key, reading] : {std::pair{"session", &rhythm.session}, std::pair{"week", &rhythm.week}}) {
        if (*reading) {
            document[key] = encode(**reading);
        }
    }
    for (const auto& [key, instant] :
         {std::pair{"firstReadAt", &rhythm.firstReadAt}, std::pair{"firstKnownAt", &rhythm.firstKnownAt},
          std::pair{"learntUpTo", &rhythm.learntUpTo}}) {
        if (*instant) {
            document[key] = encodeDate(**instant, DateCoding::secondsSince1970);
        }
    }
    if (rhythm.seenUpTo) {
        document["seenUpTo"] = *rhythm.seenUpTo;
    }
    return dumpJson(document) + "\n";
}

Rhythm decodeRhythm(std::string_view text) {
    const auto document = parseJson(text);
    if (!document || !document->is_object() || document->value("version", nlohmann::json()) != kVersion) {
        return {};
    }
    Rhythm rhythm;
    rhythm.week = decodeReading(findMember(*document, "week"));
    rhythm.session = decodeReading(findMember(*document, "session"));
    rhythm.firstReadAt = decodeInstant(*document, "firstReadAt");
    rhythm.firstKnownAt = decodeInstant(*document, "firstKnownAt");
    rhythm.learntUpTo = decodeInstant(*document, "learntUpTo");
    if (const auto* hour = findMember(*document, "seenUpTo")) {
        rhythm.seenUpTo = decodeHour(*hour);
    }
    // Without these nobody knows which of the readings that are still there have been learnt from.
    if (!rhythm.learntUpTo || (rhythm.week && (!rhythm.firstReadAt || !rhythm.seenUpTo))) {
        return {};
    }
    decodeLists(*document, rhythm);
    auto& exchange = rhythm.exchange;
    auto& sessions = rhythm.sessions;
    decodeSums(findMember(*document, "sessions"), {&sessions.count, &sessions.landed, &sessions.full});
    decodeSums(findMember(*document, "exchange"), {&exchange.sessionPoints, &exchange.weekPoints, &exchange.localPoints,
                                                   &exchange.localWeight, &exchange.elsewherePoints});
    decodeSums(findMember(*document, "weeks"), {&rhythm.weeks, &rhythm.fullWeeks});
    decodeSums(findMember(*document, "watched"), {&rhythm.weekPointsWatched, &rhythm.weightWatched});
    decodeSums(findMember(*document, "before"), {&rhythm.weightBefore, &rhythm.hoursBefore});
    return rhythm;
}

void PrintTo(const Rhythm& rhythm, std::ostream* out) {
    *out << encodeRhythm(rhythm);
}

}  // namespace vorn
