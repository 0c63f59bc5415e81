#include "core/status_line/connection_note.hpp"

#include <charconv>

#include <fmt/format.h>

#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/stable_hash.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

constexpr std::size_t kLargest = std::size_t{1} << 20U;
constexpr const char* kKinds[] = {"unknown", "settings", "otherHome", "backup"};

std::optional<Instant> dateIn(const json& object, const char* key) {
    const json* date = findMember(object, key);
    return date == nullptr ? std::nullopt : std::optional(decodeDate(*date, DateCoding::iso8601));
}

std::optional<ConnectionNote::Settings> settingsIn(const json& document) {
    const json* object = findMember(document, "settings");
    if (object == nullptr) {
        return std::nullopt;
    }
    const std::string digits = decodeText(requireMember(*object, "digest"));
    ConnectionNote::Settings settings{
        .path = decodeText(requireMember(*object, "path")),
        .size = static_cast<std::uint64_t>(decodeInteger(requireMember(*object, "size")))};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), settings.digest, 16);
    if (error != std::errc{} || end != digits.data() + digits.size()) {
        throw DecodingError("no digest");
    }
    const json* made = findMember(*object, "madeByVorn");
    settings.isMadeByVorn = made != nullptr && made->is_boolean() && made->get<bool>();
    return settings;
}

Provenance provenanceIn(const json& document) {
    const json* object = findMember(document, "original");
    Provenance provenance;
    if (object == nullptr) {
        return provenance;
    }
    const std::string from = decodeText(requireMember(*object, "from"));
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
        provenance.kind = from == kKinds[i] ? static_cast<Provenance::Kind>(i) : provenance.kind;
    }
    if (const json* file = findMember(*object, "file")) {
        provenance.file = decodeText(*file);
    }
    provenance.date = dateIn(*object, "date");
    return provenance;
}

json encode(const Provenance& provenance) {
    json object = {{"from", kKinds[static_cast<std::size_t>(provenance.kind)]}};
    if (!provenance.file.empty()) {
        object["file"] = provenance.file.string();
    }
    if (provenance.date) {
        object["date"] = encodeDate(*provenance.date, DateCoding::iso8601);
    }
    return object;
}

}  // namespace

ConnectionNote::Settings ConnectionNote::describe(const fs::path& path, std::string_view text) {
    return {.path = fs::absolute(path), .size = text.size(), .digest = stableHash(text)};
}

bool ConnectionNote::isAsLeft(const fs::path& path, std::string_view text) const {
    if (!settings) {
        return false;
    }
    const Settings now = describe(path, text);
    return now.path == settings->path && now.size == settings->size && now.digest == settings->digest;
}

Provenance ConnectionNote::provenanceOf(Instant recorded) const {
    // Dates are kept to whole seconds.
    return recordedAt && formatIso8601(*recordedAt) == formatIso8601(recorded) ? provenance : Provenance{};
}

ConnectionNote ConnectionNote::read(const fs::path& file) try {
    ConnectionNote note;
    const auto text = readFile(file, kLargest);
    const auto document = text ? parseJson(*text) : std::nullopt;
    if (!document || !document->is_object()) {
        return note;
    }
    note.settings = settingsIn(*document);
    note.recordedAt = dateIn(*document, "recordedAt");
    note.provenance = provenanceIn(*document);
    note.toldSilenceAt = dateIn(*document, "toldSilenceAt");
    return note;
} catch (const DecodingError&) {
    return {};
}

void ConnectionNote::write(const fs::path& file) const {
    json document = {{"original", encode(provenance)}};
    if (settings) {
        document["settings"] = {{"path", settings->path.string()},
                                {"size", settings->size},
                                {"digest", fmt::format("{:016x}", settings->digest)},
                                {"madeByVorn", settings->isMadeByVorn}};
    }
    if (recordedAt) {
        document["recordedAt"] = encodeDate(*recordedAt, DateCoding::iso8601);
    }
    if (toldSilenceAt) {
        document["toldSilenceAt"] = encodeDate(*toldSilenceAt, DateCoding::iso8601);
    }
    createPrivateDirectories(fs::absolute(file).parent_path());
    replaceFile(file, dumpJson(document, true) + "\n");
}

}  // namespace vorn
