#include "platform/linux/x11_keyboard.hpp"

#include <algorithm>
#include <initializer_list>

namespace vorn {

namespace {

constexpr std::uint32_t kSmallP = 0x70;
constexpr std::uint32_t kCapitalP = 0x50;
constexpr std::uint32_t kNumLock = 0xff7f;
constexpr std::uint32_t kScrollLock = 0xff14;
constexpr std::uint32_t kAltLeft = 0xffe9;
constexpr std::uint32_t kAltRight = 0xffea;

constexpr std::uint16_t kCapsLockMask = 1U << 1U;
constexpr std::uint16_t kControlMask = 1U << 2U;
constexpr std::uint16_t kMod1Mask = 1U << 3U;
constexpr std::size_t kFirstFreeModifier = 3;
constexpr std::size_t kModifiers = 8;

/// Where the P key is on every keyboard that Linux drives, whatever is printed on it.
constexpr std::uint8_t kPhysicalP = 33;

std::size_t rows(const X11Keyboard& keyboard) {
    return keyboard.keysymsPerKeycode == 0 ? 0 : keyboard.keysyms.size() / keyboard.keysymsPerKeycode;
}

std::uint32_t keysymAt(const X11Keyboard& keyboard, std::size_t row, std::size_t column) {
    return keyboard.keysyms[row * keyboard.keysymsPerKeycode + column];
}

/// The keys that give P. The first layout that has one decides: of English and Dvorak in turn, one position is meant,
/// and the other belongs to other programs. A Russian layout beside an English one leaves P where English has it.
std::vector<std::uint8_t> keycodesOfP(const X11Keyboard& keyboard) {
    std::vector<std::uint8_t> found;
    for (std::size_t column = 0; column < keyboard.keysymsPerKeycode && found.empty(); ++column) {
        for (std::size_t row = 0; row < rows(keyboard); ++row) {
            const auto keysym = keysymAt(keyboard, row, column);
            if (keysym == kSmallP || keysym == kCapitalP) {
                found.push_back(static_cast<std::uint8_t>(keyboard.firstKeycode + row));
            }
        }
    }
    if (found.empty()) {
        found.push_back(kPhysicalP);
    }
    return found;
}

bool hasKeysym(const X11Keyboard& keyboard, std::uint8_t keycode, std::initializer_list<std::uint32_t> wanted) {
    if (keycode < keyboard.firstKeycode ||
        static_cast<std::size_t>(keycode - keyboard.firstKeycode) >= rows(keyboard)) {
        return false;
    }
    const std::size_t row = keycode - keyboard.firstKeycode;
    for (std::size_t column = 0; column < keyboard.keysymsPerKeycode; ++column) {
        if (std::ranges::find(wanted, keysymAt(keyboard, row, column)) != wanted.end()) {
            return true;
        }
    }
    return false;
}

/// The modifiers, of those that keyboards assign as they like, which one of these keysyms sets.
std::uint16_t modifiersOf(const X11Keyboard& keyboard, std::initializer_list<std::uint32_t> keysyms) {
    std::uint16_t mask = 0;
    for (std::size_t modifier = kFirstFreeModifier; modifier < kModifiers; ++modifier) {
        for (std::size_t i = 0; i < keyboard.keycodesPerModifier; ++i) {
            const auto at = modifier * keyboard.keycodesPerModifier + i;
            if (at < keyboard.modifierKeycodes.size() && hasKeysym(keyboard, keyboard.modifierKeycodes[at], keysyms)) {
                mask = static_cast<std::uint16_t>(mask | 1U << modifier);
            }
        }
    }
    return mask;
}

std::uint16_t altMask(const X11Keyboard& keyboard) {
    const auto mask = modifiersOf(keyboard, {kAltLeft, kAltRight});
    return mask == 0 ? kMod1Mask : static_cast<std::uint16_t>(mask & -mask);
}

}  // namespace

std::vector<X11Key> hotKeyCombinations(const X11Keyboard& keyboard) {
    const auto pressed = static_cast<std::uint16_t>(kControlMask | altMask(keyboard));
    const auto locks =
        static_cast<std::uint16_t>((kCapsLockMask | modifiersOf(keyboard, {kNumLock, kScrollLock})) & ~pressed);
    std::vector<X11Key> combinations;
    for (const auto keycode : keycodesOfP(keyboard)) {
        // Every subset of the locks, from all of them down to none.
        for (std::uint16_t locked = locks;; locked = static_cast<std::uint16_t>((locked - 1) & locks)) {
            combinations.push_back({keycode, static_cast<std::uint16_t>(pressed | locked)});
            if (locked == 0) {
                break;
            }
        }
    }
    std::ranges::sort(combinations);
    return combinations;
}

}  // namespace vorn
