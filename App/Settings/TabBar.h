#pragma once

#include "App/DesignSystem/Theme.h"
#include "App/Model/SettingsTab.h"

#include <QTabBar>

namespace vespra {

/// The pages of the settings window as icons with their titles. The arrow keys go from one to the next.
class TabBar final : public QTabBar {
public:
    explicit TabBar(const Theme& theme);

    /// Follows the model: tells nobody.
    void show(SettingsTab tab);
    /// Called when the user has chosen another one.
    std::function<void(SettingsTab tab)> onChoose;

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void drawTab(QPainter& painter, int index) const;

    const Theme theme_;
    ObservationLoop loop_;
};

} // namespace vespra
