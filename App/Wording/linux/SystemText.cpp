#include "App/Wording/SystemText.h"

#include <algorithm>
#include <array>

namespace vespra {

namespace {

    struct Text {
        std::string_view literal, here;
    };

    // In the order of the literals' bytes; "%1" stands for the application's name.
    constexpr std::array texts = std::to_array<Text>({
        {"%1 opens quietly in the menu bar each time you start your Mac. No session starts on its own.",
            "%1 opens quietly in the system tray each time you log in. No session starts on its own."},
        {"%1: keeping the Mac awake", "%1: keeping the computer awake"},
        {"A small system component keeps the Mac awake with the lid closed. macOS asks you to approve it once. It puts "
         "your sleep setting back on its own if %1 stops, and when the Mac restarts.",
            "A small system component keeps the computer awake with the lid closed. The system asks you to approve it "
            "once. It lets the computer sleep again on its own if %1 stops, and when the computer restarts."},
        {"Allow %1 in System Settings to finish.", "Allow %1 in your desktop's settings to finish."},
        {"Allows closed-lid mode without the charger. The low-battery threshold still applies. A closed Mac in a bag "
         "gets warmer.",
            "Allows closed-lid mode without the charger. The low-battery threshold still applies. A closed laptop in a "
            "bag gets warmer."},
        {"Closed-lid mode is off so the Mac can cool down.", "Closed-lid mode is off so the computer can cool down."},
        {"Mac is too hot for closed-lid mode.", "Computer is too hot for closed-lid mode."},
        {"Mac too hot", "Computer too hot"},
        {"Mac went to sleep", "Computer went to sleep"},
        {"New versions are downloaded in the background and installed when %1 quits.",
            "New versions are downloaded in the background. Your system asks you before it installs one."},
        {"Open System Settings", "Ask for Approval"},
        {"Protects your battery when the Mac isn't plugged in. The session ends and the Mac can sleep.",
            "Protects your battery when the computer isn't plugged in. The session ends and the computer can sleep."},
        {"Requires a MacBook", "Requires a laptop with a lid"},
        {"Session ended — Mac too hot", "Session ended — computer too hot"},
        {"Shutting down needs the closed-lid component. Without it, the Mac will go to sleep instead.",
            "Shutting down needs the closed-lid component. Without it, the computer will go to sleep instead."},
        {"Sound alert when the Mac runs hot", "Sound alert when the computer runs hot"},
        {"Stops if the Mac runs hot", "Stops if the computer runs hot"},
        {"The Mac goes back to its usual sleep settings.", "The computer goes back to its usual sleep settings."},
        {"The Mac goes to sleep right away, after a 1-minute countdown you can cancel.",
            "The computer goes to sleep right away, after a 1-minute countdown you can cancel."},
        {"The Mac is running hot", "The computer is running hot"},
        {"The Mac shuts down after a 1-minute countdown you can cancel. Unsaved work in other apps will be lost.",
            "The computer shuts down after a 1-minute countdown you can cancel. Unsaved work in other apps will be "
            "lost."},
        {"The Mac will shut down in %1", "The computer will shut down in %1"},
        {"The Mac will shut down in 1 minute. Save your work.",
            "The computer will shut down in 1 minute. Save your work."},
        {"The Mac will sleep in %1", "The computer will sleep in %1"},
        {"The Mac will sleep in 1 minute.", "The computer will sleep in 1 minute."},
        {"These keys don't work on this Mac. Choose others.",
            "Apps can't have shortcuts of their own on this desktop. In its keyboard settings, give keys to this "
            "command: %1"},
        {"This Mac has no built-in display, so closed-lid mode doesn't apply.",
            "This computer has no lid, so closed-lid mode doesn't apply."},
        {"This agent isn't installed on this Mac.", "This agent isn't installed on this computer."},
        {"Time left in the menu bar", "Time left in the system tray"},
        {"To stay awake with the lid closed, %1 installs a small system component. macOS asks you to allow it once in "
         "System Settings: it changes your sleep setting during a session and puts it back on its own afterwards.",
            "To stay awake with the lid closed, %1 installs a small system component. The system asks you to allow it "
            "once: it keeps the lid from putting the computer to sleep during a session and lets go on its own "
            "afterwards."},
        {"Waiting for your approval in System Settings.", "Waiting for your approval."},
        {"Your Mac can go to sleep again.", "Your computer can go to sleep again."},
        {"Your Mac is running hot", "Your computer is running hot"},
    });
    static_assert(std::ranges::is_sorted(texts, {}, &Text::literal));
    static_assert(std::ranges::adjacent_find(texts, {}, &Text::literal) == texts.end());

} // namespace

std::string_view systemText(std::string_view literal)
{
    const auto* const found = std::ranges::lower_bound(texts, literal, {}, &Text::literal);
    return found != texts.end() && found->literal == literal ? found->here : literal;
}

} // namespace vespra
