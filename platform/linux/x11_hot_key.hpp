#pragma once

#include <QAbstractNativeEventFilter>
#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/hot_key.hpp"
#include "platform/linux/x11_keyboard.hpp"

struct xcb_connection_t;
struct xcb_key_press_event_t;

namespace vorn {

/// A passive grab on the X server. It goes over Qt's own connection: a popover that grabs the keyboard then still lets
/// the key close it, which another client's key would not. Must not outlive the application object's event loop.
class X11HotKey : public HotKey, private QAbstractNativeEventFilter {
public:
    /// How long after a try a key that another program holds is tried again; the server does not tell when it is let
    /// go.
    static constexpr std::chrono::milliseconds kRetry = std::chrono::minutes{1};

    explicit X11HotKey(xcb_connection_t* connection, std::chrono::milliseconds retry = kRetry);
    ~X11HotKey() override;

    [[nodiscard]] bool isRegistered() const override { return !m_combinations.empty(); }
    [[nodiscard]] QString problem() const override;
    [[nodiscard]] QString keys() const override;
    void tick() override;

private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    bool isKeyboardChange(const std::uint8_t* event) const;
    bool handlePress(const xcb_key_press_event_t& event);
    bool handleRelease(const xcb_key_press_event_t& event);
    bool isRepeat(const xcb_key_press_event_t& event) const;
    void registerKeys();
    bool grab(const std::vector<X11Key>& combinations);
    void release(const std::vector<X11Key>& combinations);

    /// A key that is down. Times are the server's, in milliseconds.
    struct Held {
        std::uint8_t keycode = 0;
        std::uint32_t pressedAt = 0;
        std::optional<std::uint32_t> releasedAt;
    };

    xcb_connection_t* m_connection;
    std::vector<std::uint32_t> m_roots;
    std::optional<std::uint8_t> m_keyboardEvents;  ///< The events' number of the server's keyboard extension.
    std::vector<X11Key> m_combinations;            ///< What is registered; empty while another program has it.
    std::optional<Held> m_held;
    const std::chrono::milliseconds m_retry;
    QDeadlineTimer m_rest;  ///< Until a key that another program holds is tried again.
    QTimer m_keyboardChanged;
};

}  // namespace vorn
