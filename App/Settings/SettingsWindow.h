#pragma once

#include "App/DesignSystem/WindowGround.h"
#include "App/Launch/AppSurfaces.h"
#include "App/Settings/SettingsSurface.h"

namespace vespra {

class ScrollArea;
class TabBar;

/// The settings: tabs above, the page of the model's tab below. As wide as ever, as high as its page up to the screen's
/// height, from where on the page scrolls.
class SettingsWindow final : public QWidget {
public:
    SettingsWindow(const SurfaceContext& context, const Theme& theme);

    /// Called when the user has closed it.
    std::function<void()> onClose;

protected:
    void paintEvent(QPaintEvent*) override { ground_.paint(); }
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addShortcuts();
    void followTab();
    void showPage(SettingsTab tab);
    void refreshFacts();
    void fit();

    const SettingsSurface surface_;
    TabBar* tabs_;
    ScrollArea* scroller_;
    WindowGround ground_;
    ObservationLoop loop_;
};

} // namespace vespra
