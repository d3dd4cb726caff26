#pragma once

// App/MenuBar: the item in the menu bar or system tray. The controller decides what it shows; the system's item shows
// it.

#include "Core/Observation/Observed.h"

#include <QRect>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vespra {

struct SurfaceContext;

/// What an entry of the item's menu does.
enum class StatusMenuAction { openPanel, toggleSession, openSettings, quit };

struct StatusMenuEntry {
    StatusMenuAction action;
    std::string title;
    bool operator==(const StatusMenuEntry&) const = default;
};

/// What the item shows.
struct StatusItemContent {
    /// The mark has a notch, with a dot in it.
    bool isActive = false;
    /// What a screen reader says.
    std::string accessibilityLabel;
    /// Beside the mark, with the blank that keeps them apart; absent: the mark stands alone.
    std::optional<std::string> title;
    /// The session in words, for who rests the pointer on the item; absent where nothing shows it.
    std::optional<std::string> toolTip;
    std::vector<StatusMenuEntry> menu;
    bool operator==(const StatusItemContent&) const = default;
};

/// The item as the system has it. It shows nothing before the first `show`. Main thread only.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// What the system lets an item have; the same from the first moment on.
    struct Features {
        bool hasTitle = false;
        bool hasToolTip = false;
        /// What the menu offers, from the top down.
        std::vector<StatusMenuAction> menu;
    };
    virtual Features features() const = 0;

    /// Takes the place of what was shown; what is the same stays untouched.
    virtual void show(const StatusItemContent& content) = 0;
    /// Under the item, if it is for the application to show it; desktops on Linux do so themselves.
    virtual void popUpMenu() = 0;
    /// While the panel hangs from it. Does nothing where the system does not show that.
    virtual void setHighlighted(bool highlighted) = 0;

    /// Where the item is on the screen, in Qt's coordinates; absent while that is not known, as before the first click
    /// on Linux. A panel hangs from its edge that lies towards the middle of the screen.
    virtual std::optional<QRect> buttonFrame() const = 0;
    /// The part of the item's screen that windows may take; absent when `buttonFrame` is.
    virtual std::optional<QRect> visibleFrame() const = 0;

    enum class Presence {
        unknown, // the system has not answered yet
        shown,
        absent, // nothing can be clicked; it may still come, when a tray starts
    };
    /// Followed by observation loops.
    Presence presence() const { return presence_.get(); }
    bool isShown() const { return presence() == Presence::shown; }

    enum class Click { primary, secondary };
    std::function<void(Click)> onClick;
    std::function<void(StatusMenuAction)> onChoose;

protected:
    void setPresence(Presence presence) { presence_.set(presence); }

private:
    Observed<Presence> presence_;
};

/// The system's own; nothing else may make one at the same time.
std::unique_ptr<StatusItem> makeStatusItem(const SurfaceContext& context);

} // namespace vespra
