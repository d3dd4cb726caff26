#pragma once

#include "App/DesignSystem/Theme.h"
#include "App/Launch/AppDelegate.h"
#include "App/System/simulated/VirtualLaptop.h"

#include <QTemporaryDir>

namespace vespra {

/// How the user wants to see windows, as far as a scene asks for it.
struct StageSetup {
    bool hasHighContrast = false;
    /// 1 for the usual size of text.
    double textScale = 1;
    bool isRightToLeft = false;
};

/// The whole application on a laptop in memory, on 21 November 2026 from 14:00 UTC on, with nothing kept from
/// earlier runs and closed-lid mode set up. Nothing moves but by what a scene does. Main thread only.
class Stage {
public:
    Stage(const StageSetup& setup, bool isDark);

    AppModel& model() { return delegate_.model(); }
    const Theme& theme() const { return theme_; }
    SurfaceContext context();

    /// Lets the time pass until the clocks show this.
    void waitUntil(int hour, int minute, int second = 0);
    void change(const std::function<void(MachineState&)>& change);
    void prefer(const std::function<void(SessionPreferences&)>& change);
    /// Also the settings of a session that runs.
    void set(const std::function<void(SessionSettings&)>& change);
    /// The agent has been used in the home directory, which is of the stage's own.
    void install(AgentKind agent);
    /// The same, and it is connected.
    void connect(AgentKind agent);
    /// The agent reports from a folder of this name.
    void report(AgentKind agent, const std::string& folder, AgentSignal signal);
    void start();

    /// Takes the turns that are due.
    void settle() { laptop_.settle(); }

private:
    QTemporaryDir home_;
    VirtualLaptop laptop_;
    AppDelegate delegate_;
    Look look_;
    Theme theme_;
};

} // namespace vespra
