// Carbon would otherwise define check, verify and require as macros.
#define __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES 0
#include <Carbon/Carbon.h>

#include "platform/hot_key.hpp"

namespace vorn {

namespace {

constexpr UInt32 kKeyP = 35;
constexpr UInt32 kControlOption = controlKey | optionKey;
constexpr EventHotKeyID kIdentity{.signature = 0x564F524E /* VORN */, .id = 1};

class CarbonHotKey : public HotKey {
public:
    CarbonHotKey() {
        const EventTypeSpec isPressed{kEventClassKeyboard, kEventHotKeyPressed};
        m_status =
            InstallEventHandler(GetApplicationEventTarget(), &CarbonHotKey::handle, 1, &isPressed, this, &m_handler);
        if (m_status == noErr) {
            m_status = RegisterEventHotKey(kKeyP, kControlOption, kIdentity, GetApplicationEventTarget(), 0, &m_key);
        }
    }

    ~CarbonHotKey() override {
        if (m_key != nullptr) {
            UnregisterEventHotKey(m_key);
        }
        if (m_handler != nullptr) {
            RemoveEventHandler(m_handler);
        }
    }

    [[nodiscard]] bool isRegistered() const override { return m_status == noErr; }

    [[nodiscard]] QString problem() const override {
        if (isRegistered()) {
            return {};
        }
        return m_status == eventHotKeyExistsErr ? QStringLiteral("Another program uses %1.").arg(keys())
                                                : QStringLiteral("macOS did not accept %1.").arg(keys());
    }

    [[nodiscard]] QString keys() const override { return QStringLiteral("⌃⌥P"); }

private:
    static OSStatus handle(EventHandlerCallRef /*next*/, EventRef event, void* self) {
        EventHotKeyID identity{};
        const auto status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr,
                                              sizeof(identity), nullptr, &identity);
        if (status != noErr || identity.signature != kIdentity.signature || identity.id != kIdentity.id) {
            return eventNotHandledErr;
        }
        // Not from in here: opening a window takes long, and the event is still being handled.
        QMetaObject::invokeMethod(static_cast<CarbonHotKey*>(self), &HotKey::pressed, Qt::QueuedConnection);
        return noErr;
    }

    EventHandlerRef m_handler = nullptr;
    EventHotKeyRef m_key = nullptr;
    OSStatus m_status = noErr;
};

}  // namespace

std::unique_ptr<HotKey> HotKey::system() {
    return std::make_unique<CarbonHotKey>();
}

}  // namespace vorn
