#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorn {

/// The keyboard as the X server describes it to everybody.
struct X11Keyboard {
    std::uint8_t firstKeycode = 8;
    std::size_t keysymsPerKeycode = 0;
    std::vector<std::uint32_t> keysyms;  ///< Row by row, one row a keycode.
    std::size_t keycodesPerModifier = 0;
    std::vector<std::uint8_t> modifierKeycodes;  ///< Eight rows, from Shift to Mod5; 0 stands for none.
};

/// A key together with the modifiers that are down, locks among them.
struct X11Key {
    std::uint8_t keycode = 0;
    std::uint16_t modifiers = 0;
    auto operator<=>(const X11Key&) const = default;
};

/// Every key and modifier state that is Ctrl+Alt+P, whatever is locked; sorted, without repetition.
std::vector<X11Key> hotKeyCombinations(const X11Keyboard& keyboard);

}  // namespace vorn
