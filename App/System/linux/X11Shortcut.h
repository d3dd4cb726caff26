#pragma once

#include "App/System/GlobalShortcut.h"
#include "App/System/linux/X11.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"

#include <map>
#include <optional>
#include <QSocketNotifier>
#include <string>
#include <vector>

namespace vespra {

/// Grabs keys of an X server. Where the session is not an X server's own, no keys are available.
class X11Shortcut final : public GlobalShortcut {
public:
    /// `mainLoop` outlives it.
    explicit X11Shortcut(MainLoop& mainLoop);

    void set(Request request) override;
    void clear(std::string_view name) override;

private:
    struct Grab {
        xcb_keycode_t code;
        std::uint16_t modifiers;
        bool operator==(const Grab&) const = default;
    };
    struct Shortcut {
        Request request;
        std::vector<Grab> grabs;
    };

    bool connect();
    /// Has no grabs if it fails.
    Outcome grab(Shortcut& shortcut);
    void ungrab(Shortcut& shortcut);
    void handleEvents();
    void pressed(const xcb_key_press_event_t& event);
    void released(const xcb_key_release_event_t& event);
    void keyboardChanged();
    bool isDown(xcb_keycode_t code);

    MainLoop& mainLoop_;
    XcbConnection connection_;
    xcb_window_t root_ = 0;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<std::string, Shortcut, std::less<>> shortcuts_;
    /// The shortcut whose keys are down, and the last of them.
    struct Pressed {
        xcb_keycode_t code;
        std::string name;
    };
    std::optional<Pressed> pressed_;
    Lifetime lifetime_;
};

} // namespace vespra
