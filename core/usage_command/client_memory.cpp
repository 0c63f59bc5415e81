#include "core/usage_command/client_memory.hpp"

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <utility>

#include <fmt/format.h>

#include "core/data/usage_window.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

using namespace std::chrono_literals;
using nlohmann::json;

constexpr Seconds kBetweenBreakdowns = 1h;
constexpr Seconds kLongest = std::chrono::days{30};
constexpr std::chrono::milliseconds kPatience{50};
constexpr std::size_t kLargestFile = std::size_t{64} << 10U;
/// Executables: the client's, and some that were chosen or updated.
constexpr std::size_t kMostKept = 8;

std::string identityOf(const fs::path& executable) {
    const auto stamp = fileStamp(executable);
    return stamp ? fmt::format("{}:{}:{}:{}", stamp->device, stamp->number, stamp->size, stamp->modified)
                 : std::string();
}

/// What could not be written, by executable.
struct Held {
    std::mutex mutex;
    std::map<std::string, json> notes;
};
Held& held() {
    static Held instance;
    return instance;
}

std::optional<Instant> dateIn(const json& note, const char* key) {
    const json* date = findMember(note, key);
    return date == nullptr ? std::nullopt : std::optional(decodeDate(*date, DateCoding::secondsSince1970));
}

/// The newest last; a damaged file has none.
json::array_t notesIn(const std::optional<std::string>& content) {
    const auto document = content ? parseJson(*content) : std::nullopt;
    const json* notes = document && document->is_object() ? findMember(*document, "executables") : nullptr;
    return notes != nullptr && notes->is_array() ? notes->get_ref<const json::array_t&>() : json::array_t();
}

bool isOf(const json& note, const std::string& executable) {
    return note.is_object() && note.value("executable", json()) == json(executable);
}

void keep(const fs::path& file, const std::string& executable, const json& note) {
    const FileLock lock = FileLock::beside(file, kPatience);
    json::array_t notes = notesIn(readToReplace(file, kLargestFile));
    std::erase_if(notes, [&](const json& each) { return isOf(each, executable); });
    notes.push_back(note);
    notes.erase(notes.begin(), notes.end() - static_cast<std::ptrdiff_t>(std::min(notes.size(), kMostKept)));
    removeAbandonedTemporaries(file);
    replaceFile(file, dumpJson({{"executables", notes}}, true) + "\n");
}

}  // namespace

ClientMemory::ClientMemory(const fs::path& executable, Keeping keeping)
    : m_executable(identityOf(executable)), m_keeping(keeping) {
    if (!m_executable.empty()) {
        load();
    }
}

bool ClientMemory::mayAskForReport(Instant now) const {
    // One that is far ahead was written before the clock was set back.
    return !m_textUntil || now >= *m_textUntil || *m_textUntil - now > kLongest;
}

void ClientMemory::askForText(Instant now, Seconds span) {
    m_textUntil = now + std::min(span, kLongest);
    save();
}

bool ClientMemory::mayAskForBreakdown(Instant now) const {
    return !m_breakdownAt || now - *m_breakdownAt >= kBetweenBreakdowns || *m_breakdownAt > now + kClockSlack;
}

void ClientMemory::noteBreakdown(Instant now) {
    m_breakdownAt = now;
    save();
}

void ClientMemory::noteMissingNote() {
    if (std::exchange(m_notesEachAnswer, false)) {
        save();
    }
}

void ClientMemory::load() try {
    const std::lock_guard lock(held().mutex);
    json note;
    if (const auto unsaved = held().notes.find(m_executable); unsaved != held().notes.end()) {
        note = unsaved->second;
    } else {
        const json::array_t notes = notesIn(readFile(VornPaths::clientMemory(), kLargestFile));
        const auto found = std::ranges::find_if(notes, [&](const json& each) { return isOf(each, m_executable); });
        note = found != notes.end() ? *found : json::object();
    }
    m_textUntil = dateIn(note, "textUntil");
    m_breakdownAt = dateIn(note, "breakdownAt");
    const json* const notesEach = findMember(note, "notesEachAnswer");
    m_notesEachAnswer = notesEach == nullptr || *notesEach != false;
} catch (const DecodingError&) {
    // As good as none: the client is tried again.
}

void ClientMemory::save() const {
    if (m_executable.empty() || m_keeping == Keeping::nothing) {
        return;
    }
    json note{{"executable", m_executable}};
    if (m_textUntil) {
        note["textUntil"] = encodeDate(*m_textUntil, DateCoding::secondsSince1970);
    }
    if (m_breakdownAt) {
        note["breakdownAt"] = encodeDate(*m_breakdownAt, DateCoding::secondsSince1970);
    }
    if (!m_notesEachAnswer) {
        note["notesEachAnswer"] = false;
    }
    const std::lock_guard lock(held().mutex);
    try {
        keep(VornPaths::clientMemory(), m_executable, note);
        held().notes.erase(m_executable);
    } catch (const fs::filesystem_error&) {
        held().notes[m_executable] = note;
    }
}

}  // namespace vorn
