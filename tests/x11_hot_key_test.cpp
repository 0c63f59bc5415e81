#include "platform/linux/x11_hot_key.hpp"

#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <cstdlib>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include "platform/linux/x11_keyboard.hpp"
#include "tests/support/wait_until.hpp"

// Their headers define words like None and Bool.
extern "C" int XkbLockGroup(Display* display, unsigned int device, unsigned int group);
extern "C" int XFlush(Display* display);

namespace vorn {

void PrintTo(const X11Key& key, std::ostream* out) {
    *out << "key " << int{key.keycode} << " with " << key.modifiers;
}

namespace {

using namespace std::chrono_literals;
using test::waitUntil;

constexpr std::uint16_t kControlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
constexpr std::uint8_t kP = 33;
constexpr std::uint8_t kDvorakP = 27;
constexpr unsigned int kCoreKeyboard = 0x100;

TEST(X11Keyboard, FindsTheKeyAndTheLocks) {
    enum : std::uint32_t {
        nothing = 0,
        p = 0x70,
        P = 0x50,
        l = 0x6c,
        er = 0x6d2,
        num = 0xff7f,
        scroll = 0xff14,
        alt = 0xffe9
    };
    constexpr std::uint16_t caps = 2;
    constexpr std::uint16_t control = 4;
    const struct {
        const char* name;
        std::size_t columns;
        std::vector<std::uint32_t> keysyms;   // Of keycode 8 and the following ones.
        std::vector<std::uint8_t> modifiers;  // From Shift to Mod5, one keycode each.
        std::vector<X11Key> expected;
    } cases[] = {
        {"Num Lock on Mod2",
         2,
         {p, P, alt, 0, num, 0},
         {0, 0, 0, 9, 10, 0, 0, 0},
         {{8, control | 8}, {8, control | 8 | caps}, {8, control | 8 | 16}, {8, control | 8 | caps | 16}}},
        {"Alt on Mod3, no Num Lock",
         2,
         {p, P, alt, 0},
         {0, 0, 0, 0, 0, 9, 0, 0},
         {{8, control | 32}, {8, control | 32 | caps}}},
        {"Num Lock where Alt is",
         1,
         {p, alt, num},
         {0, 0, 0, 9, 0, 0, 0, 0},
         {{8, control | 8}, {8, control | 8 | caps}}},
        {"capital only, on two keys", 2, {P, nothing, P, nothing}, {}, {{8, 12}, {8, 14}, {9, 12}, {9, 14}}},
        {"in the second layout", 4, {er, er, p, P}, {}, {{8, 12}, {8, 14}}},
        {"elsewhere in the second layout", 4, {p, P, l, l, er, er, p, P}, {}, {{8, 12}, {8, 14}}},
        {"nowhere", 2, {er, er}, {}, {{kP, 12}, {kP, 14}}},
        {"no keyboard", 0, {}, {9, 9}, {{kP, 12}, {kP, 14}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(hotKeyCombinations({.keysymsPerKeycode = c.columns,
                                      .keysyms = c.keysyms,
                                      .keycodesPerModifier = c.modifiers.empty() ? 0U : 1U,
                                      .modifierKeycodes = c.modifiers}),
                  c.expected);
    }
    auto allLocks = hotKeyCombinations({.keysymsPerKeycode = 1,
                                        .keysyms = {p, num, scroll},
                                        .keycodesPerModifier = 1,
                                        .modifierKeycodes = {0, 0, 0, 0, 9, 0, 0, 10}});
    EXPECT_EQ(allLocks.size(), 8U);
}

/// Another program on the same display.
class OtherProgram {
public:
    OtherProgram() : m_connection(xcb_connect(nullptr, nullptr)) {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }
    ~OtherProgram() { xcb_disconnect(m_connection); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    bool take(std::uint8_t keycode, std::uint16_t modifiers) {
        auto* error = xcb_request_check(m_connection, xcb_grab_key_checked(m_connection, 0, m_root, modifiers, keycode,
                                                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        const bool isTaken = error == nullptr;
        std::free(error);
        return isTaken;
    }
    void letGo(std::uint8_t keycode, std::uint16_t modifiers) {
        std::free(xcb_request_check(m_connection, xcb_ungrab_key_checked(m_connection, keycode, m_root, modifiers)));
    }
    bool isFree(std::uint8_t keycode, std::uint16_t modifiers = kControlAlt) {
        const bool isFree = take(keycode, modifiers);
        if (isFree) {
            letGo(keycode, modifiers);
        }
        return isFree;
    }
    std::uint16_t modifiers() {
        auto* reply = xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr);
        const std::uint16_t mask = reply == nullptr ? 0 : reply->mask;
        std::free(reply);
        return mask;
    }

private:
    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
};

/// Counts what Qt receives, before the hot key does.
class SeenPresses : public QAbstractNativeEventFilter {
public:
    SeenPresses() { qApp->installNativeEventFilter(this); }
    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        count += *static_cast<const std::uint8_t*>(message) == XCB_KEY_PRESS ? 1 : 0;
        return false;
    }
    int count = 0;
};

/// A display without a window manager, and Qt on it.
class X11HotKeyTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        for (const char* program : {"Xvfb", "xdotool", "setxkbmap"}) {
            if (QStandardPaths::findExecutable(program).isEmpty()) {
                return;
            }
        }
        s_server = new QProcess;
        s_server->start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp", "-noreset"});
        while (!s_server->canReadLine() && s_server->waitForReadyRead(20'000)) {
        }
        qputenv("DISPLAY", ":" + s_server->readLine().trimmed());
        qputenv("QT_QPA_PLATFORM", "xcb");
        static int argc = 1;
        static char name[] = "x11_hot_key_test";
        static char* argv[] = {name, nullptr};
        s_application = new QGuiApplication(argc, argv);
    }

    static void TearDownTestSuite() {
        delete s_application;
        if (s_server != nullptr) {
            s_server->kill();
            s_server->waitForFinished();
        }
        delete s_server;
    }

    void SetUp() override {
        if (s_server == nullptr) {
            GTEST_SKIP() << "needs Xvfb, xdotool and setxkbmap";
        }
    }

    void make(std::chrono::milliseconds retry = X11HotKey::kRetry) {
        auto* x11 = s_application->nativeInterface<QNativeInterface::QX11Application>();
        m_key = std::make_unique<X11HotKey>(x11->connection(), retry);
        QObject::connect(m_key.get(), &HotKey::pressed, m_key.get(), [this] { ++m_pressed; });
    }

    static void run(const QString& program, const QStringList& arguments) {
        EXPECT_EQ(QProcess::execute(program, arguments), 0) << program.toStdString();
    }
    /// Keycodes, so that nothing is looked up or remapped.
    static void press(const QString& keys) { run("xdotool", {"key", keys}); }
    static void lock(OtherProgram& other, std::uint16_t modifier, const QString& key) {
        press(key);
        EXPECT_TRUE(waitUntil([&] { return (other.modifiers() & modifier) != 0; }));
    }

    static inline QProcess* s_server = nullptr;
    static inline QGuiApplication* s_application = nullptr;
    std::unique_ptr<X11HotKey> m_key;
    int m_pressed = 0;
};

const QString kPressP = QStringLiteral("37+64+33");

TEST_F(X11HotKeyTest, IsPressedWhateverIsLocked) {
    OtherProgram other;
    make();
    EXPECT_TRUE(m_key->isRegistered());
    EXPECT_EQ(m_key->problem(), QString());
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed == 1; }));
    lock(other, XCB_MOD_MASK_2, "77");
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed == 2; }));
    lock(other, XCB_MOD_MASK_LOCK, "66");
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed == 3; }));
    for (const char* less : {"37+33", "64+33", "37+64+50+33", "37+64+32"}) {
        press(less);
    }
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed >= 4; }));
    EXPECT_EQ(m_pressed, 4) << "other keys count too";

    EXPECT_FALSE(other.isFree(kP));
    m_key.reset();
    EXPECT_TRUE(waitUntil([&] { return other.isFree(kP); }));
    EXPECT_TRUE(other.isFree(kP, kControlAlt | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2));
}

TEST_F(X11HotKeyTest, HeldKeyIsOnePress) {
    make();
    SeenPresses seen;
    run("xdotool", {"keydown", "37", "keydown", "64", "keydown", "33"});
    EXPECT_TRUE(waitUntil([&] { return seen.count >= 4; }));
    run("xdotool", {"keyup", "33", "keyup", "64", "keyup", "37"});
    EXPECT_EQ(m_pressed, 1);
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed >= 2; }));
    EXPECT_EQ(m_pressed, 2);
}

TEST_F(X11HotKeyTest, WaitsForTheProgramThatHasIt) {
    OtherProgram other;
    ASSERT_TRUE(other.take(kP, kControlAlt | XCB_MOD_MASK_2));
    make(0ms);
    EXPECT_FALSE(m_key->isRegistered());
    EXPECT_EQ(m_key->problem(), "Another program uses Ctrl+Alt+P.");
    EXPECT_TRUE(waitUntil([&] { return other.isFree(kP); })) << "half a key is kept";

    int changes = 0;
    QObject::connect(m_key.get(), &HotKey::stateChanged, m_key.get(), [&] { ++changes; });
    m_key->tick();
    EXPECT_EQ(changes, 0);
    other.letGo(kP, kControlAlt | XCB_MOD_MASK_2);
    EXPECT_TRUE(waitUntil([&] { return m_key->tick(), m_key->isRegistered(); }));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(m_key->problem(), QString());
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed == 1; }));
}

TEST_F(X11HotKeyTest, FollowsTheLayout) {
    OtherProgram other;
    make();
    const struct {
        const char* name;
        QStringList layout;
        std::uint8_t keycode;
        std::uint8_t unused;
    } cases[] = {
        {"moved", {"us", "-variant", "dvorak"}, kDvorakP, kP},
        {"no Latin letters", {"ru"}, kP, kDvorakP},
        {"moved again", {"us", "-variant", "dvorak"}, kDvorakP, kP},
        {"two layouts", {"us,ru"}, kP, kDvorakP},
    };
    int expected = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        run("setxkbmap", c.layout);
        EXPECT_TRUE(waitUntil([&] { return !other.isFree(c.keycode) && other.isFree(c.unused); }));
        press(QStringLiteral("37+64+%1").arg(c.unused));
        press(QStringLiteral("37+64+%1").arg(c.keycode));
        ++expected;
        EXPECT_TRUE(waitUntil([&] { return m_pressed >= expected; }));
        EXPECT_EQ(m_pressed, expected);
    }
    auto* display = s_application->nativeInterface<QNativeInterface::QX11Application>()->display();
    ASSERT_TRUE(XkbLockGroup(display, kCoreKeyboard, 1));
    XFlush(display);
    press(kPressP);
    EXPECT_TRUE(waitUntil([&] { return m_pressed > expected; }));
}

TEST_F(X11HotKeyTest, NewLayoutTriesATakenKeyAgain) {
    OtherProgram other;
    ASSERT_TRUE(other.take(kP, kControlAlt));
    make();
    EXPECT_FALSE(m_key->isRegistered());
    run("setxkbmap", {"us", "-variant", "dvorak"});
    EXPECT_TRUE(waitUntil([&] { return m_key->isRegistered(); }));
    run("setxkbmap", {"us"});
    EXPECT_TRUE(waitUntil([&] { return !m_key->isRegistered(); }));
    EXPECT_TRUE(waitUntil([&] { return other.isFree(kDvorakP); }));
}

}  // namespace

}  // namespace vorn
