#include "platform/linux/autostart_login_item.hpp"

#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/support/executable_path.hpp"
#include "core/support/file.hpp"

namespace vorn {

namespace fs = std::filesystem;

namespace {

constexpr auto kRelativePath = "autostart/vorn.desktop";
constexpr std::size_t kLimit = 1U << 20U;  // Nobody's desktop entry is larger.
constexpr std::array<std::string_view, 9> kOurKeys{
    "Type", "Name", "Comment", "Icon", "Exec", "TryExec", "Terminal", "Hidden", "X-GNOME-Autostart-enabled"};

fs::path userPath() {
    const fs::path configured = environmentValue("XDG_CONFIG_HOME").value_or("");
    return (configured.is_absolute() ? configured : homeDirectory() / ".config") / kRelativePath;
}

/// Links to nowhere included.
bool isThere(const fs::path& path) {
    std::error_code failed;
    return fs::exists(fs::symlink_status(path, failed));
}

/// An entry that cannot be read is an empty one: it starts nothing, and still hides those with less precedence.
std::optional<DesktopEntry> readEntry(const fs::path& path) {
    return isThere(path) ? std::optional(DesktopEntry(readFile(path, kLimit).value_or(""))) : std::nullopt;
}

/// For writing it back: throws when there is a file with a content that cannot be read. A directory, or a link to
/// nowhere or to a device, which is a way to switch an entry off, is an empty entry.
std::optional<DesktopEntry> readOwnEntry() {
    const fs::path path = userPath();
    return fs::is_regular_file(path) ? DesktopEntry(requireFile(path, kLimit)) : readEntry(path);
}

std::optional<DesktopEntry> systemEntry() {
    const std::string directories = environmentValue("XDG_CONFIG_DIRS").value_or("/etc/xdg");
    for (std::size_t begin = 0; begin < directories.size();) {
        const auto end = std::min(directories.find(':', begin), directories.size());
        const fs::path directory = directories.substr(begin, end - begin);
        begin = end + 1;
        if (auto entry = directory.is_absolute() ? readEntry(directory / kRelativePath) : std::nullopt) {
            return entry;
        }
    }
    return std::nullopt;
}

bool isProgram(const std::string& name) {
    return !name.empty() && !QStandardPaths::findExecutable(QString::fromStdString(name)).isEmpty();
}

bool isThisDesktopIn(const std::vector<std::string>& names) {
    const std::string desktops = ':' + environmentValue("XDG_CURRENT_DESKTOP").value_or("") + ':';
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return !name.empty() && desktops.find(':' + name + ':') != std::string::npos;
    });
}

bool isMeantForThisDesktop(const DesktopEntry& entry) {
    const auto only = entry.list("OnlyShowIn");
    return (only.empty() || isThisDesktopIn(only)) && !isThisDesktopIn(entry.list("NotShowIn"));
}

bool isSwitchedOff(const DesktopEntry& entry) {
    return entry.isTrue("Hidden") || entry.value("X-GNOME-Autostart-enabled") == "false";
}

bool startsProgram(const DesktopEntry& entry) {
    const auto words = execWords(entry.value("Exec").value_or(""));
    const auto condition = entry.value("TryExec");
    return !words.empty() && isProgram(words.front()) && (!condition || isProgram(*condition));
}

bool startsAtLogin(const std::optional<DesktopEntry>& entry) {
    return entry && !isSwitchedOff(*entry) && isMeantForThisDesktop(*entry) && startsProgram(*entry);
}

/// Whether it holds nothing that a user or another program would miss.
bool isOursAlone(const DesktopEntry& entry) {
    return entry.hasOnly(kOurKeys) && execWords(entry.value("Exec").value_or("")).size() <= 1;
}

void write(const fs::path& path, const DesktopEntry& entry) {
    createPrivateDirectories(path.parent_path());
    // A link stays one as long as there is a file behind it.
    replaceFile({.path = path, .content = entry.text(), .followsLinks = fs::is_regular_file(path)});
}

void removeBlocks(DesktopEntry& entry) {
    entry.remove("Hidden");
    entry.remove("X-GNOME-Autostart-enabled");
    if (!isMeantForThisDesktop(entry)) {
        entry.remove("OnlyShowIn");
        entry.remove("NotShowIn");
    }
}

void startExecutable(DesktopEntry& entry, const fs::path& executable) {
    if (executable.empty()) {
        throw std::runtime_error("the system does not tell where the program is");
    }
    entry.set("Type", "Application");
    if (!entry.value("Name")) {
        entry.set("Name", "Vorn");
        entry.set("Comment", "Shows whether you will hit a limit of your plan");
        entry.set("Icon", "vorn");
    }
    entry.set("Exec", execWord(executable.string()));
    entry.set("TryExec", executable.string());
}

}  // namespace

std::unique_ptr<LoginItem> LoginItem::system() {
    return std::make_unique<AutostartLoginItem>(runningExecutable());
}

bool AutostartLoginItem::isEnabled() const {
    const auto own = readEntry(userPath());
    return startsAtLogin(own ? own : systemEntry());
}

void AutostartLoginItem::setEnabled(bool on) {
    try {
        if (on) {
            enable();
        } else {
            disable();
        }
    } catch (const fs::filesystem_error& error) {
        throw std::runtime_error("Starting at login could not be switched " + std::string(on ? "on" : "off") + ": " +
                                 userPath().string() + ": " + error.code().message());
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("Starting at login could not be switched on: " + std::string(error.what()));
    }
}

void AutostartLoginItem::enable() const {
    if (isEnabled()) {
        return;
    }
    const fs::path path = userPath();
    const auto own = readOwnEntry();
    if (own && isOursAlone(*own) && startsAtLogin(systemEntry())) {
        fs::remove(path);
        return;
    }
    DesktopEntry entry = own.value_or(DesktopEntry(""));
    removeBlocks(entry);
    if (!startsProgram(entry)) {
        startExecutable(entry, m_executable);
    }
    write(path, entry);
}

void AutostartLoginItem::disable() const {
    const fs::path path = userPath();
    const auto own = readOwnEntry();
    const bool isSystemWide = systemEntry().has_value();
    if (own ? isSwitchedOff(*own) : !isSystemWide) {
        return;
    }
    if (!isSystemWide && isOursAlone(*own)) {
        fs::remove(path);
        return;
    }
    DesktopEntry entry = own.value_or(DesktopEntry("[Desktop Entry]\nType=Application\nName=Vorn\n"));
    entry.set("Hidden", "true");
    write(path, entry);
}

}  // namespace vorn
