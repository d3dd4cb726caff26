#pragma once

#include "App/Model/SettingsTab.h"

#include <functional>
#include <optional>

namespace vespra {

class AppearanceMonitoring;
class AppModel;
class MainLoop;
class ObservedClock;
class TaskScheduling;

/// What every surface works with. All of it outlives the surfaces' use of it, which ends with the application.
struct SurfaceContext {
    AppModel& model;
    MainLoop& mainLoop;
    TaskScheduling& tasks;
    /// The date, for what shows passing seconds.
    const ObservedClock& clock;
    const AppearanceMonitoring& appearance;
};

/// What the user sees and presses. The application in a terminal has none. Each of the `make` functions is called once,
/// in this order, at launch; every other only after its own. Main thread only.
class AppSurfaces {
public:
    virtual ~AppSurfaces() = default;

    /// Takes the application to the front.
    virtual void activate() = 0;

    virtual void makePanel(const SurfaceContext& context) = 0;
    /// False also while other windows lie before it.
    virtual bool isPanelVisible() const = 0;
    /// Under the status item; as a window where there is no place for one.
    virtual void showPanel() = 0;
    virtual void hidePanel() = 0;

    /// Where it is clicked, and where its menu asks for the settings.
    struct StatusItemActions {
        std::function<void()> onToggle;
        std::function<void()> onSettings;
    };
    virtual void makeStatusItem(const SurfaceContext& context, StatusItemActions actions) = 0;

    virtual void makeSettingsWindow(const SurfaceContext& context) = 0;
    /// At the page that it shows already, if none is given.
    virtual void showSettings(std::optional<SettingsTab> tab) = 0;

    virtual void showOnboarding(const SurfaceContext& context) = 0;
};

} // namespace vespra
