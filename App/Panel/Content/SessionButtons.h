#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/Panel/Content/PanelContext.h"

class QHBoxLayout;

namespace vespra {

/// Starts a session, or makes the one that runs longer and stops it.
class SessionButtons final : public QWidget {
public:
    explicit SessionButtons(const PanelContext& context);

    /// Gives the focus to the button that starts or stops; false if it is disabled.
    bool takeFocus() const;
    /// What Return does where nothing else uses it: starts a session, but never stops one.
    void pressReturn() const;

private:
    void follow(const AppModel& model, const PanelClock& clock);

    const PanelContext& context_;
    QHBoxLayout* row_;
    Button* start_;
    Button* extend_;
    Button* stop_;
    FollowsLook follows_;
    ObservationLoop loop_;
};

} // namespace vespra
