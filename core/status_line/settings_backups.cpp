#include "core/status_line/settings_backups.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

#include <sys/stat.h>

#include "core/status_line/status_line_command.hpp"
#include "core/support/file.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kNewest = 5;
constexpr std::size_t kLargest = std::size_t{64} << 20U;

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

SettingsBackups::Backup read(const fs::path& path) {
    SettingsBackups::Backup backup{.path = path, .keptAt = {}, .isReadable = false, .statusLine = {}};
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        backup.keptAt = Instant{Seconds{static_cast<double>(status.st_mtime)}};
    }
    try {
        const auto text = readFile(path, kLargest);
        if (!text) {
            return backup;
        }
        const JSONValue document = text->empty() ? JSONValue(JSONValue::Object{}) : JSONValue::parse(*text);
        if (const JSONValue* statusLine = document.member("statusLine")) {
            backup.statusLine = *statusLine;
        }
        backup.isReadable = document.object() != nullptr;
    } catch (const JSONValue::ParseError&) {
        // Whatever it holds, it is not for us to judge.
    }
    return backup;
}

}  // namespace

fs::path SettingsBackups::first() const {
    return m_settings.string() + ".vorn-backup";
}

/// Lowest number first.
std::vector<SettingsBackups::Numbered> SettingsBackups::numbered() const {
    std::vector<Numbered> found;
    const std::string start = first().filename().string() + ".";
    std::error_code error;
    for (fs::directory_iterator entry(fs::absolute(m_settings).parent_path(), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(start)) {
            continue;
        }
        Numbered one{.path = m_settings.parent_path() / name};
        const char* last = name.data() + name.size();
        const auto [stop, failure] = std::from_chars(name.data() + start.size(), last, one.number);
        if (failure == std::errc{} && stop == last && one.number > 0) {
            found.push_back(std::move(one));
        }
    }
    std::ranges::sort(found, {}, &Numbered::number);
    return found;
}

std::vector<SettingsBackups::Backup> SettingsBackups::all() const {
    std::vector<Backup> backups;
    if (isThere(first())) {
        backups.push_back(read(first()));
    }
    for (const Numbered& one : numbered()) {
        backups.push_back(read(one.path));
    }
    return backups;
}

std::optional<SettingsBackups::Backup> SettingsBackups::holding(const JSONValue& statusLine) const {
    const std::vector<Backup> backups = all();
    const auto found = std::find_if(backups.rbegin(), backups.rend(),
                                    [&](const Backup& backup) { return backup.statusLine == statusLine; });
    return found == backups.rend() ? std::nullopt : std::optional(*found);
}

std::optional<SettingsBackups::Backup> SettingsBackups::newestOwn() const {
    const std::vector<Backup> backups = all();
    const auto found = std::find_if(backups.rbegin(), backups.rend(), [](const Backup& backup) {
        return backup.isReadable && !mentionsRelay(commandOf(backup.statusLine ? &*backup.statusLine : nullptr));
    });
    return found == backups.rend() ? std::nullopt : std::optional(*found);
}

fs::path SettingsBackups::next() const {
    const std::vector<Numbered> present = numbered();
    const unsigned long number = present.empty() ? 1 : present.back().number + 1;
    return first().string() + "." + std::to_string(number);
}

void SettingsBackups::keep(std::string_view text) const {
    if (!isThere(first())) {
        replaceFile({.path = first(), .content = text, .model = m_settings});
        return;
    }
    keepNumbered(text);
}

void SettingsBackups::keepNumbered(std::string_view text) const {
    const std::vector<Numbered> present = numbered();
    if (readFile(present.empty() ? first() : present.back().path, kLargest) == text) {
        return;
    }
    createPrivateDirectories(fs::absolute(m_settings).parent_path());
    replaceFile({.path = next(), .content = text, .model = m_settings});
    prune();
}

void SettingsBackups::prune() const {
    const std::vector<Numbered> present = numbered();
    if (present.size() <= kNewest) {
        return;
    }
    std::vector<Backup> staying = {read(first())};
    for (std::size_t i = present.size(); i-- > 0;) {
        Backup backup = read(present[i].path);
        const bool isElsewhere = backup.isReadable && std::ranges::any_of(staying, [&](const Backup& other) {
                                     return other.isReadable && other.statusLine == backup.statusLine;
                                 });
        const bool hasNone = backup.isReadable && !backup.statusLine;
        if (present.size() - i > kNewest && (isElsewhere || hasNone)) {
            std::error_code ignored;
            fs::remove(backup.path, ignored);
        } else {
            staying.push_back(std::move(backup));
        }
    }
}

void SettingsBackups::removeAbandoned() const {
    removeAbandonedTemporaries(first());
    removeAbandonedTemporaries(next());
}

}  // namespace vorn
