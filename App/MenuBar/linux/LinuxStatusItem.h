#pragma once

#include "App/MenuBar/linux/StatusNotifierItem.h"
#include "App/MenuBar/linux/TrayMenu.h"
#include "App/MenuBar/linux/TrayPlace.h"
#include "App/MenuBar/linux/TrayRegistration.h"
#include "App/MenuBar/StatusItem.h"
#include "Core/Observation/ObservationLoop.h"

#include <QObject>

namespace vespra {

/// An item in the desktop's tray, over the bus of the user's session.
class LinuxStatusItem final : public StatusItem {
public:
    /// Both outlive it.
    LinuxStatusItem(MainLoop& mainLoop, const AppearanceMonitoring& appearance);
    ~LinuxStatusItem() override;

    Features features() const override;
    void show(const StatusItemContent& content) override;
    // The desktop's panel draws the menu and the item.
    void popUpMenu() override { }
    void setHighlighted(bool) override { }
    std::optional<QRect> buttonFrame() const override;
    std::optional<QRect> visibleFrame() const override;

private:
    void publish();
    void drawIcon();
    void activated(QPoint told);
    void chosen(StatusMenuAction action);
    std::optional<TrayScreen> screen() const;

    bool hasTitle_;
    MainLoop& mainLoop_;
    const AppearanceMonitoring& appearance_;
    QDBusConnection bus_;
    /// What is registered on the bus: adaptors publish what they are children of.
    QObject itemObject_, menuObject_;
    std::unique_ptr<StatusNotifierItem> item_;
    TrayMenu menu_;
    std::optional<QPoint> place_; // on the item, or at least near it
    bool isPlaceClicked_ = false;
    Observed<bool> isActive_;
    std::optional<std::pair<bool, TrayColors>> drawn_;
    std::optional<ObservationLoop> iconLoop_;
    std::optional<TrayRegistration> registration_;
    Lifetime lifetime_;
};

} // namespace vespra
