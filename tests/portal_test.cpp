#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QPalette>
#include <QScopeGuard>

#include <gtest/gtest.h>

#include "platform/linux/desktop_portal.hpp"
#include "platform/linux/portal_appearance.hpp"
#include "platform/linux/portal_hot_key.hpp"
#include "tests/support/private_bus.hpp"
#include "tests/support/wait_until.hpp"

namespace vorn {

void PrintTo(const DesktopAppearance::Look& look, std::ostream* out) {
    *out << (look.isDark ? "dark" : "light") << (look.highContrast ? ", high contrast" : "")
         << (look.reducedMotion ? ", reduced motion" : "");
}

namespace {

using namespace std::chrono_literals;
using test::waitUntil;

const QString kShortcuts = "org.freedesktop.portal.GlobalShortcuts";
const QString kSettings = "org.freedesktop.portal.Settings";
const QString kNone =
    "This desktop offers no global shortcuts to programs. Bind a key to \"vorn --show-popover\" in its settings.";
const QString kDeclined =
    "The desktop did not allow a global shortcut. Bind a key to \"vorn --show-popover\" in its settings.";
const QString kAppearance = "org.freedesktop.appearance";
const QString kInterface = "org.gnome.desktop.interface";

/// What the scripted portal does when it is asked. An answer is what its user or its compositor decides.
struct Script {
    enum class Reaction { answers, failsAtOnce, isSilent };
    Reaction reaction = Reaction::answers;
    uint sessionAnswer = 0;
    uint bindAnswer = 0;
    bool keepsShortcut = true;
    QString trigger;
    PortalSettings settings;
};

PortalShortcuts shortcut(const QString& trigger) {
    return {{"show-popover", {{"trigger_description", trigger}}}};
}

/// Takes the portal's name on the bus for as long as it lives.
class FakePortal : public QDBusVirtualObject {
public:
    FakePortal(test::PrivateBus& bus, Script script) : m_script(std::move(script)), m_bus(bus.connection()) {
        EXPECT_TRUE(m_bus.registerVirtualObject(portal::kPath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(m_bus.registerService(portal::kService));
    }
    /// Unregistered first: a call that finds the object while the connection ends crashes in Qt's thread for the bus.
    ~FakePortal() override {
        m_bus.unregisterObject(portal::kPath, QDBusConnection::UnregisterTree);
        QDBusConnection::disconnectFromBus(m_bus.name());
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        calls << call.member();
        if (m_script.reaction == Script::Reaction::isSilent) {
            return true;
        }
        if (m_script.reaction == Script::Reaction::failsAtOnce) {
            return false;  // Unknown to it.
        }
        if (call.member() == "ReadAll") {
            m_bus.send(call.createReply(QVariant::fromValue(m_script.settings)));
        } else if (call.member() == "CreateSession") {
            const auto options = qdbus_cast<QVariantMap>(call.arguments().at(0));
            session = pathFor(call, "session", options.value("session_handle_token").toString());
            respond(call, options, m_script.sessionAnswer, {{"session_handle", session}});
        } else if (call.member() == "BindShortcuts") {
            EXPECT_EQ(qvariant_cast<QDBusObjectPath>(call.arguments().at(0)).path(), session);
            const auto wanted = qdbus_cast<PortalShortcuts>(call.arguments().at(1));
            EXPECT_EQ(wanted.value(0).second.value("preferred_trigger"), "CTRL+ALT+p");
            EXPECT_NE(wanted.value(0).second.value("description").toString(), "");
            const auto bound = m_script.keepsShortcut ? shortcut(m_script.trigger) : PortalShortcuts();
            respond(call, qdbus_cast<QVariantMap>(call.arguments().at(3)), m_script.bindAnswer,
                    {{"shortcuts", QVariant::fromValue(bound)}});
        }
        return true;
    }

    void signal(const QString& path, const QString& interface, const QString& name, const QVariantList& arguments) {
        auto message = QDBusMessage::createSignal(path, interface, name);
        message.setArguments(arguments);
        m_bus.send(message);
    }
    void activate(const QString& sessionPath, const QString& id) {
        signal(portal::kPath, kShortcuts, "Activated",
               {QVariant::fromValue(QDBusObjectPath(sessionPath)), id, qulonglong{1},
                QVariantMap{{"activation_token", "let me"}}});
    }
    void changeShortcuts(const PortalShortcuts& shortcuts) {
        signal(portal::kPath, kShortcuts, "ShortcutsChanged",
               {QVariant::fromValue(QDBusObjectPath(session)), QVariant::fromValue(shortcuts)});
    }
    void changeSetting(const QString& space, const QString& key, const QVariant& value) {
        signal(portal::kPath, kSettings, "SettingChanged", {space, key, QVariant::fromValue(QDBusVariant(value))});
    }

    QStringList calls;
    QString session;

private:
    static QString pathFor(const QDBusMessage& call, const QString& kind, const QString& token) {
        return QString("%1/%2/%3/%4").arg(portal::kPath, kind, call.service().mid(1).replace('.', '_'), token);
    }
    void respond(const QDBusMessage& call, const QVariantMap& options, uint code, const QVariantMap& results) {
        const QString request = pathFor(call, "request", options.value("handle_token").toString());
        m_bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        signal(request, "org.freedesktop.portal.Request", "Response", {code, results});
    }

    Script m_script;
    QDBusConnection m_bus;
};

class PortalTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "portal_test";
        static char* argv[] = {name, nullptr};
        s_application = new QGuiApplication(argc, argv);
        s_bus = new test::PrivateBus;
    }
    static void TearDownTestSuite() {
        delete s_bus;
        delete s_application;
    }

    static inline test::PrivateBus* s_bus = nullptr;
    static inline QGuiApplication* s_application = nullptr;
};

class PortalHotKeyTest : public PortalTest {
protected:
    void make(std::chrono::milliseconds patience = PortalHotKey::kPatience) {
        m_key = std::make_unique<PortalHotKey>(s_bus->connection(), patience);
        QObject::connect(m_key.get(), &HotKey::pressed, m_key.get(), [this] { ++m_pressed; });
    }
    bool becomesRegistered() {
        return waitUntil([&] { return m_key->isRegistered(); });
    }
    bool becomesProblem(const QString& text) {
        return waitUntil([&] { return m_key->problem() == text; });
    }

    std::unique_ptr<PortalHotKey> m_key;
    int m_pressed = 0;
};

TEST_F(PortalHotKeyTest, IsPressedWithTheKeysThatTheDesktopGave) {
    FakePortal portal(*s_bus, {.trigger = " Super+\nV "});
    make();
    EXPECT_FALSE(m_key->isRegistered());
    EXPECT_EQ(m_key->problem(), QString());
    EXPECT_EQ(m_key->keys(), "Ctrl+Alt+P");
    ASSERT_TRUE(becomesRegistered());
    EXPECT_EQ(m_key->keys(), "Super+ V");

    portal.activate(portal.session, "another");
    portal.activate(portal.session + "x", "show-popover");
    portal.activate(portal.session, "show-popover");
    EXPECT_TRUE(waitUntil([&] { return m_pressed > 0; }));
    EXPECT_EQ(m_pressed, 1);
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "let me");

    portal.changeShortcuts(shortcut("Super+W"));
    EXPECT_TRUE(waitUntil([&] { return m_key->keys() == "Super+W"; }));
    portal.changeShortcuts({});
    EXPECT_TRUE(becomesProblem(kDeclined));
    portal.changeShortcuts(shortcut({}));
    EXPECT_TRUE(becomesRegistered());
    EXPECT_EQ(m_key->keys(), "Ctrl+Alt+P");
    portal.signal(portal.session, "org.freedesktop.portal.Session", "Closed", {});
    EXPECT_TRUE(becomesProblem(kDeclined));
}

TEST_F(PortalHotKeyTest, SaysWhyThereIsNone) {
    using enum Script::Reaction;
    const struct {
        const char* name;
        Script script;
        QString problem;
    } cases[] = {
        {"knows no shortcuts", {.reaction = failsAtOnce}, kNone}, {"never answers", {.reaction = isSilent}, kNone},
        {"makes no session", {.sessionAnswer = 2}, kNone},        {"is declined", {.bindAnswer = 1}, kDeclined},
        {"grants nothing", {.keepsShortcut = false}, kDeclined},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FakePortal portal(*s_bus, c.script);
        make(c.script.reaction == isSilent ? 200ms : PortalHotKey::kPatience);
        EXPECT_EQ(m_key->problem(), QString());
        EXPECT_TRUE(becomesProblem(c.problem));
        EXPECT_FALSE(m_key->isRegistered());
    }
}

TEST_F(PortalHotKeyTest, FollowsThePortalAsItComesAndGoes) {
    make();
    EXPECT_TRUE(becomesProblem(kNone));
    QString oldSession;
    {
        FakePortal portal(*s_bus, {});
        EXPECT_TRUE(becomesRegistered());
        oldSession = portal.session;
    }
    EXPECT_TRUE(becomesProblem(kNone));
    FakePortal portal(*s_bus, {});
    EXPECT_TRUE(becomesRegistered());
    portal.activate(oldSession, "show-popover");
    portal.activate(portal.session, "show-popover");
    EXPECT_TRUE(waitUntil([&] { return m_pressed > 0; }));
    EXPECT_EQ(m_pressed, 1);
    EXPECT_EQ(portal.calls, QStringList({"CreateSession", "BindShortcuts"}));

    m_key.reset();
    EXPECT_TRUE(waitUntil([&] { return portal.calls.contains("Close"); }));
}

TEST_F(PortalHotKeyTest, WhoDeclinedIsNotAskedAgain) {
    {
        FakePortal portal(*s_bus, {.bindAnswer = 1});
        make();
        EXPECT_TRUE(becomesProblem(kDeclined));
    }
    FakePortal portal(*s_bus, {});
    auto second = PortalHotKey(s_bus->connection());  // What it hears of the new portal, the first has heard too.
    EXPECT_TRUE(waitUntil([&] { return second.isRegistered(); }));
    EXPECT_EQ(portal.calls.count("CreateSession"), 1);
    EXPECT_EQ(m_key->problem(), kDeclined);
}

TEST(PortalSettings, BecomeALook) {
    const struct {
        const char* name;
        PortalSettings settings;
        bool hasDarkPalette;
        DesktopAppearance::Look look;
    } cases[] = {
        {"nothing told", {}, true, {.isDark = true}},
        {"no preference", {{kAppearance, {{"color-scheme", 0U}}}}, true, {.isDark = true}},
        {"dark", {{kAppearance, {{"color-scheme", 1U}}}}, false, {.isDark = true}},
        {"light", {{kAppearance, {{"color-scheme", 2U}}}}, true, {}},
        {"contrast", {{kAppearance, {{"contrast", 1U}}}}, false, {.highContrast = true}},
        {"reduced motion", {{kAppearance, {{"reduced-motion", 1U}}}}, false, {.reducedMotion = true}},
        {"no animations", {{kInterface, {{"enable-animations", false}}}}, false, {.reducedMotion = true}},
        {"animations", {{kInterface, {{"enable-animations", true}}}}, false, {}},
        {"wrong types",
         {{kAppearance, {{"color-scheme", "dark"}, {"contrast", QVariantList{}}}},
          {kInterface, {{"color-scheme", 1U}}}},
         false,
         {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(lookOf(c.settings, c.hasDarkPalette), c.look) << c.name;
    }
}

TEST_F(PortalTest, AppearanceFollowsTheSettings) {
    std::unique_ptr<PortalAppearance> appearance;
    {
        FakePortal portal(*s_bus, {.settings = {{kAppearance, {{"color-scheme", 1U}}}}});
        appearance = std::make_unique<PortalAppearance>(s_bus->connection());
        EXPECT_EQ(appearance->look(), DesktopAppearance::Look()) << "waited for the portal";
        EXPECT_TRUE(waitUntil([&] { return appearance->isDark(); }));
        portal.changeSetting("com.example.other", "color-scheme", 2U);
        portal.changeSetting(kAppearance, "contrast", 1U);
        EXPECT_TRUE(waitUntil([&] { return appearance->highContrast(); }));
        EXPECT_TRUE(appearance->isDark());
    }
    FakePortal portal(*s_bus, {.settings = {{kInterface, {{"enable-animations", false}}}}});
    EXPECT_TRUE(waitUntil([&] { return appearance->reducedMotion(); }));
    EXPECT_EQ(appearance->look(), DesktopAppearance::Look{.reducedMotion = true});
}

TEST_F(PortalTest, AppearanceFollowsThePaletteWhereThePortalIsSilent) {
    FakePortal portal(*s_bus, {.reaction = Script::Reaction::isSilent});
    PortalAppearance appearance(s_bus->connection());
    EXPECT_FALSE(appearance.isDark());
    QGuiApplication::setPalette(QPalette(Qt::black));
    const auto restore = qScopeGuard([] { QGuiApplication::setPalette(QPalette(Qt::lightGray)); });
    EXPECT_TRUE(waitUntil([&] { return appearance.isDark(); }));
    portal.changeSetting(kAppearance, "color-scheme", 2U);
    EXPECT_TRUE(waitUntil([&] { return !appearance.isDark(); }));
}

}  // namespace

}  // namespace vorn
