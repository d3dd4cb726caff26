#include "App/System/linux/X11Keyboard.h"

#include "App/System/linux/X11.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vespra {

namespace {

    // Of X11/keysymdef.h; letters and digits are their own.
    constexpr xcb_keysym_t numLock = 0xff7f, scrollLock = 0xff14;
    constexpr xcb_keysym_t leftAlt = 0xffe9, rightAlt = 0xffea, leftSuper = 0xffeb, rightSuper = 0xffec;

    /// The code of the key at the place that `key` has on a US keyboard; absent for what is no letter or digit. Linux
    /// numbers the places alike on all keyboards.
    std::optional<xcb_keycode_t> usCode(char key)
    {
        constexpr std::pair<int, std::string_view> rows[]{
            {10, "1234567890"}, {24, "qwertyuiop"}, {38, "asdfghjkl"}, {52, "zxcvbnm"}};
        for (const auto& [first, row] : rows)
            if (const auto at = row.find(key); at != std::string_view::npos)
                return static_cast<xcb_keycode_t>(first + static_cast<int>(at));
        return {};
    }

} // namespace

X11Keyboard::X11Keyboard(xcb_connection_t* connection)
{
    const auto* setup = xcb_get_setup(connection);
    first_ = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keyboard = xcb_get_keyboard_mapping(connection, first_, count);
    const auto modifiers = xcb_get_modifier_mapping(connection);
    if (const auto reply = owned(xcb_get_keyboard_mapping_reply(connection, keyboard, nullptr))) {
        const auto* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
        symbolsPerKey_ = reply->keysyms_per_keycode;
        symbols_.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(reply.get()));
    }
    if (const auto reply = owned(xcb_get_modifier_mapping_reply(connection, modifiers, nullptr))) {
        const auto* codes = xcb_get_modifier_mapping_keycodes(reply.get());
        for (auto& keys : modifierKeys_) {
            keys.assign(codes, codes + reply->keycodes_per_modifier);
            codes += reply->keycodes_per_modifier;
        }
    }
}

std::vector<xcb_keycode_t> X11Keyboard::codes(char key) const
{
    std::vector<xcb_keycode_t> found;
    for (std::size_t column = 0; column < symbolsPerKey_ && found.empty(); ++column)
        for (std::size_t at = column; at < symbols_.size(); at += symbolsPerKey_)
            if (symbols_[at] == static_cast<xcb_keysym_t>(key))
                found.push_back(static_cast<xcb_keycode_t>(first_ + at / symbolsPerKey_));
    if (const auto code = usCode(key); found.empty() && code)
        found.push_back(*code);
    return found;
}

bool X11Keyboard::types(xcb_keycode_t code, std::initializer_list<xcb_keysym_t> symbols) const
{
    const auto begin = static_cast<std::size_t>(code - first_) * symbolsPerKey_;
    return code >= first_ && begin + symbolsPerKey_ <= symbols_.size()
        && std::any_of(symbols_.begin() + static_cast<std::ptrdiff_t>(begin),
            symbols_.begin() + static_cast<std::ptrdiff_t>(begin + symbolsPerKey_),
            [&](xcb_keysym_t symbol) { return std::ranges::find(symbols, symbol) != symbols.end(); });
}

std::uint16_t X11Keyboard::modifier(std::initializer_list<xcb_keysym_t> symbols) const
{
    for (int index = 0; index < modifierCount; ++index)
        if (std::ranges::any_of(modifierKeys_[index], [&](xcb_keycode_t code) { return types(code, symbols); }))
            return static_cast<std::uint16_t>(1U << index);
    return 0;
}

std::optional<std::uint16_t> X11Keyboard::modifiers(const KeyCombination& keys) const
{
    std::uint16_t all = 0;
    for (const auto& [isWanted, bit] : {std::pair{keys.control, std::uint16_t{XCB_MOD_MASK_CONTROL}},
             {keys.shift, std::uint16_t{XCB_MOD_MASK_SHIFT}},
             {keys.alt, modifier({leftAlt, rightAlt})},
             {keys.super, modifier({leftSuper, rightSuper})}}) {
        if (isWanted && bit == 0)
            return {};
        all |= isWanted ? bit : std::uint16_t{0};
    }
    return all;
}

std::vector<std::uint16_t> X11Keyboard::locks() const
{
    std::vector<std::uint16_t> all{0};
    for (const auto lock : {std::uint16_t{XCB_MOD_MASK_LOCK}, modifier({numLock}), modifier({scrollLock})})
        if (lock != 0)
            for (std::size_t index = 0, count = all.size(); index < count; ++index)
                all.push_back(all[index] | lock);
    return all;
}

} // namespace vespra
