#pragma once

#include "App/System/GlobalShortcut.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace vespra {

/// What the keys of an X server's keyboard mean, when it was read.
class X11Keyboard {
public:
    /// Waits for the server.
    explicit X11Keyboard(xcb_connection_t* connection);

    /// The keys that type `key` in the first layout that has any; where none has, the key that does so in the US
    /// layout.
    std::vector<xcb_keycode_t> codes(char key) const;
    /// Absent where the keyboard has not got one of these modifiers.
    std::optional<std::uint16_t> modifiers(const KeyCombination& keys) const;
    /// Every combination of Caps Lock, Num Lock and Scroll Lock, none among them.
    std::vector<std::uint16_t> locks() const;

private:
    static constexpr int modifierCount = 8;

    /// The modifiers, as bits, that a key with one of `symbols` makes.
    std::uint16_t modifier(std::initializer_list<xcb_keysym_t> symbols) const;
    bool types(xcb_keycode_t code, std::initializer_list<xcb_keysym_t> symbols) const;

    xcb_keycode_t first_ = 0;
    std::size_t symbolsPerKey_ = 0;
    /// `symbolsPerKey_` of each key, from `first_` on.
    std::vector<xcb_keysym_t> symbols_;
    std::vector<xcb_keycode_t> modifierKeys_[modifierCount];
};

} // namespace vespra
