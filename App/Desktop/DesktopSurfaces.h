#pragma once

#include "App/Desktop/SystemLook.h"
#include "App/Launch/AppSurfaces.h"
#include "App/MenuBar/StatusItemController.h"
#include "App/Onboarding/OnboardingWindowController.h"
#include "App/Panel/PanelController.h"
#include "App/Panel/PanelFrame.h"
#include "App/Settings/SettingsWindowController.h"

#include <memory>
#include <optional>

namespace vespra {

/// The item and the windows of a desktop. Where the desktop has no place for an item the panel is an ordinary window,
/// so that there always is something to click. Main thread only.
class DesktopSurfaces final : public AppSurfaces {
public:
    DesktopSurfaces();
    ~DesktopSurfaces() override;

    void activate() override;

    void makePanel(const SurfaceContext& context) override;
    bool isPanelVisible() const override;
    void showPanel() override;
    void hidePanel() override;

    void makeStatusItem(const SurfaceContext& context, StatusItemActions actions) override;

    void makeSettingsWindow(const SurfaceContext& context) override;
    void showSettings(std::optional<SettingsTab> tab) override;

    void showOnboarding(const SurfaceContext& context) override;

private:
    struct Panel;

    void followPresence();
    void nothingIsHeard();
    void itemIsShown();
    void itemIsAbsent();
    void closeWindow();

    std::optional<SurfaceContext> context_;
    std::unique_ptr<Panel> panel_;
    std::unique_ptr<StatusItem> item_;
    std::shared_ptr<PanelAnchor> anchor_;
    std::optional<StatusItemController> itemController_;
    std::optional<SettingsWindowController> settings_;
    std::optional<OnboardingWindowController> onboarding_;
    StatusItem::Presence lastPresence_ = StatusItem::Presence::unknown;
    bool isPanelAskedFor_ = false;
    std::unique_ptr<ScheduledTask> substitution_;
    std::optional<ObservationLoop> presenceLoop_;
    Lifetime lifetime_;
};

} // namespace vespra
