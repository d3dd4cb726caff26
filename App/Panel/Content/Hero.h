#pragma once

#include "App/DesignSystem/Label.h"
#include "App/DesignSystem/Ring.h"
#include "App/Panel/Content/PanelContext.h"

class QVBoxLayout;

namespace vespra {

/// The time of the session that runs, and what watches it.
class Hero final : public QWidget {
public:
    explicit Hero(const PanelContext& context);

private:
    void layOut();

    const PanelContext& context_;
    QVBoxLayout* column_;
    Ring* ring_;
    Label* guardrails_;
    Label* command_;
    FollowsLook follows_;
    ObservationLoop clock_;
    ObservationLoop lines_;
};

} // namespace vespra
