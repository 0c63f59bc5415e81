#include "platform/linux/autostart_login_item.hpp"

#include <QProcess>
#include <QStandardPaths>

#include <gmock/gmock.h>

#include "tests/support/temporary_directory.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class AutostartLoginItemTest : public testing::Test {
protected:
    [[nodiscard]] AutostartLoginItem item() const { return AutostartLoginItem(executable); }
    [[nodiscard]] bool isEnabled() const { return item().isEnabled(); }
    [[nodiscard]] std::string own() const { return fs::exists(path) ? test::readAll(path) : "absent"; }
    /// An entry with these lines, `$VORN` standing for the program.
    [[nodiscard]] std::string entry(std::string lines) const {
        for (std::size_t at = 0; (at = lines.find("$VORN")) != std::string::npos;) {
            lines.replace(at, 5, executable.string());
        }
        return "[Desktop Entry]\n" + lines;
    }
    [[nodiscard]] std::string refusal(bool on) const {
        try {
            item().setEnabled(on);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no refusal";
    }

    test::TemporaryDirectory dir;
    fs::path path = dir / "config/autostart/vorn.desktop";
    fs::path executable = dir.executable("bin/vorn", "exit 0");
    test::ScopedEnvironment config{"XDG_CONFIG_HOME", (dir / "config").c_str()};
    test::ScopedEnvironment systemConfig{"XDG_CONFIG_DIRS",
                                         (dir.path().string() + "/none:relative:" + (dir / "etc").string()).c_str()};
    test::ScopedEnvironment noBus{"DBUS_SESSION_BUS_ADDRESS", "disabled:"};
    test::ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"};
};

TEST_F(AutostartLoginItemTest, ReadsEntriesAsDesktopsDo) {
    const struct {
        const char* name;
        const char* own;     ///< Null: no such file.
        const char* system;  ///< Likewise.
        bool isEnabled;
    } cases[] = {
        {"nothing", nullptr, nullptr, false},
        {"own", "Exec=$VORN", nullptr, true},
        {"blanks, comments, arguments", "# mine\n\n Exec = \"$VORN\" --quiet %U\r\nName[de]=V", nullptr, true},
        {"found on PATH", "Exec=sh -c x", nullptr, true},
        {"system-wide", nullptr, "Exec=$VORN", true},
        {"hidden by the user", "Hidden=true", "Exec=$VORN", false},
        {"hidden, then not", "Hidden=false\nExec=$VORN", "Hidden=true", true},
        {"an empty file hides", "", "Exec=$VORN", false},
        {"switched off by a desktop", "Exec=$VORN\nX-GNOME-Autostart-enabled=false", nullptr, false},
        {"program gone", "Exec=/nowhere/vorn", nullptr, false},
        {"condition not met", "Exec=$VORN\nTryExec=/nowhere/vorn", nullptr, false},
        {"condition met", "Exec=$VORN\nTryExec=$VORN", nullptr, true},
        {"for this desktop", "Exec=$VORN\nOnlyShowIn=KDE;GNOME;", nullptr, true},
        {"for another", "Exec=$VORN\nOnlyShowIn=KDE;GNOME-Classic", nullptr, false},
        {"not for this one", "Exec=$VORN\nNotShowIn=GNOME;", nullptr, false},
        {"open quote", "Exec=\"$VORN", nullptr, false},
        {"other group", "X=1\n[Desktop Action x]\nExec=$VORN", nullptr, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(dir / "config");
        fs::remove_all(dir / "etc");
        if (c.own != nullptr) {
            (void)dir.write("config/autostart/vorn.desktop", entry(c.own));
        }
        if (c.system != nullptr) {
            (void)dir.write("etc/autostart/vorn.desktop", entry(c.system));
        }
        EXPECT_EQ(isEnabled(), c.isEnabled);

        // Whatever there was: it can be switched both ways, each more than once.
        for (const bool on : {!c.isEnabled, c.isEnabled, c.isEnabled, true, false}) {
            EXPECT_EQ(refusal(on), "no refusal");
            EXPECT_EQ(isEnabled(), on) << own();
        }
        EXPECT_EQ(c.system == nullptr ? "" : test::readAll(dir / "etc/autostart/vorn.desktop"),
                  c.system == nullptr ? "" : entry(c.system));
    }
}

TEST_F(AutostartLoginItemTest, LeavesNothingBehindAndKeepsWhatIsNotItsOwn) {
    item().setEnabled(true);
    EXPECT_EQ(own(), entry("Type=Application\nName=Vorn\nComment=Shows whether you will hit a limit of your plan\n"
                           "Icon=vorn\nExec=$VORN\nTryExec=$VORN\n"));
    item().setEnabled(false);
    EXPECT_EQ(own(), "absent");

    const auto edited = entry("Exec=$VORN --quiet\nX-Mine=1\n\n[Desktop Action a]\nExec=other\n");
    (void)dir.write("config/autostart/vorn.desktop", edited);
    item().setEnabled(false);
    EXPECT_EQ(own(), entry("Exec=$VORN --quiet\nX-Mine=1\nHidden=true\n\n[Desktop Action a]\nExec=other\n"));
    item().setEnabled(true);
    EXPECT_EQ(own(), edited);

    // A program that has moved: its entry starts the new one.
    (void)dir.write("config/autostart/vorn.desktop", entry("Exec=/old/vorn\nTryExec=/old/vorn\nX-Mine=1"));
    item().setEnabled(true);
    EXPECT_EQ(own(), entry("X-Mine=1\nType=Application\nName=Vorn\nComment=Shows whether you will hit a limit of your "
                           "plan\nIcon=vorn\nExec=$VORN\nTryExec=$VORN\n"));

    // A system-wide entry is hidden, and shown again by taking the hiding away.
    fs::remove(path);
    (void)dir.write("etc/autostart/vorn.desktop", entry("Exec=$VORN"));
    item().setEnabled(false);
    EXPECT_EQ(own(), entry("Type=Application\nName=Vorn\nHidden=true\n"));
    item().setEnabled(true);
    EXPECT_EQ(own(), "absent");
}

TEST_F(AutostartLoginItemTest, TreatsLinksAndObstaclesWithCare) {
    fs::create_directories(path.parent_path());
    fs::create_symlink("/dev/null", path);
    EXPECT_FALSE(isEnabled());
    item().setEnabled(true);
    EXPECT_TRUE(isEnabled());
    EXPECT_FALSE(fs::is_symlink(path));

    fs::remove(path);
    const auto target = dir.write("dotfiles/vorn.desktop", entry("X-Mine=1"));
    fs::create_symlink(target, path);
    item().setEnabled(true);
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_THAT(test::readAll(target), HasSubstr("X-Mine=1\n"));

    fs::remove(path);
    fs::create_directories(path / "inside");
    EXPECT_THAT(refusal(true), HasSubstr("Starting at login could not be switched on: " + path.string() + ": "));
    fs::remove_all(dir / "config");
    (void)dir.write("config", "a file");
    EXPECT_THAT(refusal(true), HasSubstr("Not a directory"));
    EXPECT_EQ(refusal(false), "no refusal");
    executable.clear();
    EXPECT_THAT(refusal(true), HasSubstr("the system does not tell where the program is"));
}

TEST_F(AutostartLoginItemTest, StartsProgramsWithAnyName) {
    const auto started = dir / "started";
    const auto launcher = QStandardPaths::findExecutable("gio");
    for (const char* name :
         {"plain", "with blank", "a\"b`c$HOME\\d", "100%U", "it's (1) & <2>;#~*?|", "a %f b", "é\tx"}) {
        SCOPED_TRACE(name);
        executable = dir.executable(name, "touch " + started.string());
        item().setEnabled(true);
        EXPECT_TRUE(isEnabled());
        EXPECT_EQ(execWords(DesktopEntry(own()).value("Exec").value_or("")), std::vector{executable.string()});
        // GLib 2.74 looks for the program before it resolves "%%".
        if (!launcher.isEmpty() && std::string_view(name).find('%') == std::string_view::npos) {
            fs::remove(started);
            QProcess::execute(launcher, {"launch", QString::fromStdString(path.string())});
            EXPECT_TRUE(test::waitUntil([&] { return fs::exists(started); })) << own();
        }
        item().setEnabled(false);
    }
}

}  // namespace
}  // namespace vorn
