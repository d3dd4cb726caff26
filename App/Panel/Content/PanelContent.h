#pragma once

#include "App/Panel/Content/PanelContext.h"

class QVBoxLayout;

namespace vespra {

class AgentList;
class SessionButtons;

/// All that the panel shows, as wide as the panel and as high as it needs to be. With less height (`setMaximumHeight`)
/// the agents scroll, and never less than their first. A new height is told like any: by `updateGeometry`.
class PanelContent final : public QWidget {
public:
    /// `hide` hides the panel, before the system asks the user something; it may be empty.
    PanelContent(const SurfaceContext& context, const Theme& theme, std::function<void()> hide = {});
    ~PanelContent() override;

    QSize sizeHint() const override;
    /// With the agents' list as low as it may be.
    QSize minimumSizeHint() const override;
    // Its width is given, so its height is too.
    bool hasHeightForWidth() const override { return false; }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addViews();
    void placeButtons();
    void orderFocus();

    PanelClock clock_;
    const PanelContext context_;
    QVBoxLayout* column_;
    AgentList* agents_ = nullptr;
    SessionButtons* buttons_ = nullptr;
    /// When the session began for which the buttons have been placed.
    std::optional<Instant> placedFor_;
    std::optional<ObservationLoop> sizes_;
    std::optional<ObservationLoop> placing_;
};

} // namespace vespra
