#include "platform/linux/x11_hot_key.hpp"

#include <QCoreApplication>
#include <algorithm>

#include <xcb/xcb.h>

#include "platform/linux/xcb_reply.hpp"

namespace vorn {

namespace {

constexpr std::uint16_t kModifierBits = 0xff;  // Above them are mouse buttons and the layout in use.
/// Held keys repeat faster than this. A key whose release went elsewhere is free again after it.
constexpr std::uint32_t kRepeatWithin = 2000;
constexpr std::uint8_t kNewKeyboard = 0;
constexpr std::uint8_t kNewMap = 1;

std::vector<std::uint32_t> rootWindows(xcb_connection_t* connection) {
    std::vector<std::uint32_t> roots;
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection)); screen.rem > 0; xcb_screen_next(&screen)) {
        roots.push_back(screen.data->root);
    }
    return roots;
}

std::optional<std::uint8_t> keyboardEvents(xcb_connection_t* connection) {
    static constexpr char kName[] = "XKEYBOARD";
    const auto cookie = xcb_query_extension(connection, sizeof(kName) - 1, kName);
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
    if (!reply || reply->present == 0) {
        return std::nullopt;
    }
    return reply->first_event;
}

X11Keyboard readKeyboard(xcb_connection_t* connection) {
    const auto* setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keysCookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
    const auto modifiersCookie = xcb_get_modifier_mapping(connection);
    const XcbReply<xcb_get_keyboard_mapping_reply_t> keys(
        xcb_get_keyboard_mapping_reply(connection, keysCookie, nullptr));
    const XcbReply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifiersCookie, nullptr));

    X11Keyboard keyboard{.firstKeycode = setup->min_keycode};
    if (keys) {
        const auto* first = xcb_get_keyboard_mapping_keysyms(keys.get());
        keyboard.keysymsPerKeycode = keys->keysyms_per_keycode;
        keyboard.keysyms.assign(first, first + xcb_get_keyboard_mapping_keysyms_length(keys.get()));
    }
    if (modifiers) {
        const auto* first = xcb_get_modifier_mapping_keycodes(modifiers.get());
        keyboard.keycodesPerModifier = modifiers->keycodes_per_modifier;
        keyboard.modifierKeycodes.assign(first, first + xcb_get_modifier_mapping_keycodes_length(modifiers.get()));
    }
    return keyboard;
}

}  // namespace

X11HotKey::X11HotKey(xcb_connection_t* connection, std::chrono::milliseconds retry)
    : m_connection(connection),
      m_roots(rootWindows(connection)),
      m_keyboardEvents(keyboardEvents(connection)),
      m_retry(retry) {
    // A new layout is announced by several events.
    m_keyboardChanged.setInterval(0);
    m_keyboardChanged.setSingleShot(true);
    connect(&m_keyboardChanged, &QTimer::timeout, this, &X11HotKey::registerKeys);
    QCoreApplication::instance()->installNativeEventFilter(this);
    registerKeys();
}

X11HotKey::~X11HotKey() {
    if (QCoreApplication::instance() != nullptr) {  // The connection goes with it.
        release(m_combinations);
        xcb_flush(m_connection);
    }
}

QString X11HotKey::problem() const {
    return isRegistered() ? QString() : QStringLiteral("Another program uses %1.").arg(keys());
}

QString X11HotKey::keys() const {
    return QStringLiteral("Ctrl+Alt+P");
}

void X11HotKey::tick() {
    if (!isRegistered() && m_rest.hasExpired()) {
        registerKeys();
    }
}

void X11HotKey::registerKeys() {
    const bool wasRegistered = isRegistered();
    const auto wanted = hotKeyCombinations(readKeyboard(m_connection));
    if (wanted != m_combinations) {
        // Those in both are granted once more, so that nobody can take them in between.
        const bool isGranted = grab(wanted);
        std::vector<X11Key> unneeded;
        std::ranges::set_difference(m_combinations, isGranted ? wanted : std::vector<X11Key>(),
                                    std::back_inserter(unneeded));
        release(unneeded);
        m_combinations = isGranted ? wanted : std::vector<X11Key>();
    }
    xcb_flush(m_connection);
    m_rest.setRemainingTime(m_retry);
    if (isRegistered() != wasRegistered) {
        emit stateChanged();
    }
}

/// All or none: a key that works only while Num Lock is on would be a riddle.
bool X11HotKey::grab(const std::vector<X11Key>& combinations) {
    std::vector<xcb_void_cookie_t> cookies;
    cookies.reserve(m_roots.size() * combinations.size());
    for (const auto root : m_roots) {
        for (const auto& [keycode, modifiers] : combinations) {
            cookies.push_back(xcb_grab_key_checked(m_connection, 0, root, modifiers, keycode, XCB_GRAB_MODE_ASYNC,
                                                   XCB_GRAB_MODE_ASYNC));
        }
    }
    bool isGranted = true;
    for (const auto& cookie : cookies) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
        isGranted = isGranted && !error;
    }
    if (!isGranted) {
        release(combinations);
    }
    return isGranted;
}

void X11HotKey::release(const std::vector<X11Key>& combinations) {
    for (const auto root : m_roots) {
        for (const auto& [keycode, modifiers] : combinations) {
            xcb_ungrab_key(m_connection, keycode, root, modifiers);
        }
    }
}

bool X11HotKey::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
    if (type != "xcb_generic_event_t") {
        return false;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(message);
    if (isKeyboardChange(bytes)) {
        m_keyboardChanged.start();
        return false;
    }
    const auto* key = static_cast<const xcb_key_press_event_t*>(message);
    switch (*bytes) {  // What programs send each other has the highest bit set, and is none of these.
        case XCB_KEY_PRESS:
            return handlePress(*key);
        case XCB_KEY_RELEASE:
            return handleRelease(*key);
        default:
            return false;
    }
}

bool X11HotKey::isKeyboardChange(const std::uint8_t* event) const {
    return event[0] == XCB_MAPPING_NOTIFY ||
           (m_keyboardEvents && event[0] == *m_keyboardEvents && (event[1] == kNewKeyboard || event[1] == kNewMap));
}

bool X11HotKey::handlePress(const xcb_key_press_event_t& event) {
    const X11Key key{event.detail, static_cast<std::uint16_t>(event.state & kModifierBits)};
    if (!std::ranges::binary_search(m_combinations, key)) {
        return false;
    }
    if (!isRepeat(event)) {
        // Not from in here: opening a window takes long, and Qt is in the middle of an event.
        QMetaObject::invokeMethod(this, &HotKey::pressed, Qt::QueuedConnection);
    }
    m_held = Held{.keycode = event.detail, .pressedAt = event.time};
    return true;
}

/// A key that is held sends presses, and unless Qt has asked the server not to, a release just before each.
bool X11HotKey::isRepeat(const xcb_key_press_event_t& event) const {
    return m_held && m_held->keycode == event.detail && event.time - m_held->pressedAt < kRepeatWithin &&
           (!m_held->releasedAt || *m_held->releasedAt == event.time);
}

bool X11HotKey::handleRelease(const xcb_key_press_event_t& event) {
    if (!m_held || m_held->keycode != event.detail || m_held->releasedAt) {
        return false;
    }
    m_held->releasedAt = event.time;
    return true;
}

}  // namespace vorn
