#include "App/System/linux/X11Shortcut.h"

#include "App/System/linux/X11Keyboard.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace vespra {

namespace {

    constexpr std::uint8_t badAccess = 10; // of X11/X.h: another program has grabbed the key

} // namespace

X11Shortcut::X11Shortcut(MainLoop& mainLoop)
    : mainLoop_{mainLoop}
{
}

void X11Shortcut::set(Request request)
{
    clear(request.name);
    if (!connect())
        return notify(request.onOutcome, Outcome{std::unexpect, Failure::unavailable});
    const auto name = request.name;
    auto& shortcut = shortcuts_[name] = {.request = std::move(request), .grabs = {}};
    const auto outcome = grab(shortcut);
    // Events that xcb read while it waited for an answer are in its queue, and do not make the connection readable.
    mainLoop_.post(lifetime_.guard([this] { handleEvents(); }));
    notify(shortcut.request.onOutcome, outcome);
}

void X11Shortcut::clear(std::string_view name)
{
    const auto found = shortcuts_.find(name);
    if (found == shortcuts_.end())
        return;
    ungrab(found->second);
    shortcuts_.erase(found);
}

bool X11Shortcut::connect()
{
    if (connection_)
        return true;
    if (!isX11Session())
        return false;
    connection_ = connectToX11();
    if (!connection_)
        return false;
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
    notifier_
        = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read, nullptr);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { handleEvents(); });
    return true;
}

/// A lock that is on counts as a modifier: the keys are grabbed once for each combination of them.
GlobalShortcut::Outcome X11Shortcut::grab(Shortcut& shortcut)
{
    auto* connection = connection_.get();
    const X11Keyboard keyboard{connection};
    const auto modifiers = keyboard.modifiers(shortcut.request.keys);
    if (!modifiers)
        return std::unexpected{Failure::unavailable};
    for (const auto code : keyboard.codes(shortcut.request.keys.key))
        for (const auto lock : keyboard.locks())
            shortcut.grabs.push_back({code, static_cast<std::uint16_t>(*modifiers | lock)});
    std::vector<xcb_void_cookie_t> requests;
    for (const auto& [code, all] : shortcut.grabs)
        requests.push_back(
            xcb_grab_key_checked(connection, 0, root_, all, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    std::optional<Failure> failure;
    for (const auto request : requests)
        if (const auto error = owned(xcb_request_check(connection, request)))
            failure = error->error_code == badAccess ? Failure::conflict : Failure::unavailable;
    if (requests.empty() || xcb_connection_has_error(connection))
        failure = Failure::unavailable;
    if (!failure)
        return {};
    ungrab(shortcut);
    return std::unexpected{*failure};
}

void X11Shortcut::ungrab(Shortcut& shortcut)
{
    for (const auto& [code, modifiers] : std::exchange(shortcut.grabs, {}))
        xcb_ungrab_key(connection_.get(), code, root_, modifiers);
    xcb_flush(connection_.get());
}

void X11Shortcut::handleEvents()
{
    while (const auto event = owned(xcb_poll_for_event(connection_.get()))) {
        if (event->response_type == XCB_KEY_PRESS)
            pressed(reinterpret_cast<const xcb_key_press_event_t&>(*event));
        else if (event->response_type == XCB_KEY_RELEASE)
            released(reinterpret_cast<const xcb_key_release_event_t&>(*event));
        else if (event->response_type == XCB_MAPPING_NOTIFY)
            keyboardChanged();
    }
    if (xcb_connection_has_error(connection_.get()))
        notifier_->setEnabled(false); // the session has ended
}

void X11Shortcut::pressed(const xcb_key_press_event_t& event)
{
    constexpr std::uint16_t modifiers = 0xff; // above them are the buttons and the layout
    const Grab grab{event.detail, static_cast<std::uint16_t>(event.state & modifiers)};
    for (const auto& [name, shortcut] : shortcuts_)
        if (std::ranges::find(shortcut.grabs, grab) != shortcut.grabs.end())
            pressed_ = {event.detail, name};
}

/// The modifiers are not looked at: the user may release them before the key. While a key is held down the server
/// repeats it, as a release followed by a press; only a key that is really up counts as released.
void X11Shortcut::released(const xcb_key_release_event_t& event)
{
    if (!pressed_ || event.detail != pressed_->code || isDown(event.detail))
        return;
    const auto name = std::exchange(pressed_, {})->name;
    if (const auto found = shortcuts_.find(name); found != shortcuts_.end())
        mainLoop_.post(found->second.request.onKeyUp);
}

bool X11Shortcut::isDown(xcb_keycode_t code)
{
    const auto keys = owned(xcb_query_keymap_reply(connection_.get(), xcb_query_keymap(connection_.get()), nullptr));
    return keys && (keys->keys[code / 8] >> (code % 8) & 1) != 0;
}

/// Letters may lie elsewhere now, and locks may be other modifiers.
void X11Shortcut::keyboardChanged()
{
    for (auto& [name, shortcut] : shortcuts_)
        ungrab(shortcut);
    std::vector<std::pair<std::function<void(const Outcome&)>, Outcome>> outcomes;
    for (auto& [name, shortcut] : shortcuts_)
        outcomes.emplace_back(shortcut.request.onOutcome, grab(shortcut));
    for (const auto& [onOutcome, outcome] : outcomes)
        notify(onOutcome, outcome);
}

} // namespace vespra
