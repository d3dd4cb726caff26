#pragma once

#include "App/Model/UserDefaults.h"
#include "App/System/GlobalShortcut.h"
#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"
#include "Log/SystemLog.h"

#include <functional>
#include <optional>
#include <string>

namespace vespra {

/// The keys that start or stop a session from any application, as the user chose them. An observation loop follows what
/// it reads here. Main thread only.
class SessionShortcut {
public:
    /// `shortcut` outlives it, and so does `defaults`; null: nothing is kept.
    SessionShortcut(GlobalShortcut& shortcut, UserDefaults* defaults);
    SessionShortcut(const SessionShortcut&) = delete;
    SessionShortcut& operator=(const SessionShortcut&) = delete;

    /// From now on the keys are the application's, and `onPressed` is called when they have been pressed.
    void start(std::function<void()> onPressed);
    /// Gives the keys back.
    void stop();

    /// Absent: the user wants none.
    const std::optional<KeyCombination>& keys() const { return keys_.get(); }
    /// Why the keys do not work; absent while they do, or nothing is known yet.
    const std::optional<GlobalShortcut::Failure>& failure() const { return failure_.get(); }
    /// What the desktop calls the keys that work in the place of `keys`, where users choose them in its own settings.
    /// Empty elsewhere.
    const std::string& desktopsKeys() const { return desktopsKeys_.get(); }

    /// Takes `keys`, and keeps them also if they do not work. False, and nothing changes, if they cannot be global.
    bool record(const KeyCombination& keys);
    /// The user wants none.
    void clear();
    /// For this run only: what is kept stays as it was.
    void setForThisRun(const std::optional<KeyCombination>& keys);
    /// Gives the keys back for a while, so that a window that records others hears of them.
    void setPaused(bool paused);

private:
    void use(const std::optional<KeyCombination>& keys);
    void apply();
    void answered(const GlobalShortcut::Outcome& outcome);

    GlobalShortcut& shortcut_;
    UserDefaults* defaults_;
    SystemLog log_;
    std::function<void()> onPressed_;
    bool isPaused_ = false;
    Observed<std::optional<KeyCombination>> keys_;
    Observed<std::optional<GlobalShortcut::Failure>> failure_;
    Observed<std::string> desktopsKeys_;
    Lifetime lifetime_;
};

} // namespace vespra
