#pragma once

#include "App/DesignSystem/Label.h"
#include "App/DesignSystem/Ring.h"
#include "App/Panel/Content/PanelContext.h"

namespace vespra {

/// The time of the session that runs, and what watches it.
class Hero final : public QWidget {
public:
    explicit Hero(const PanelContext& context);

private:
    const PanelContext& context_;
    Ring* ring_;
    Label* guardrails_;
    Label* command_;
    ObservationLoop clock_;
    ObservationLoop lines_;
};

} // namespace vespra
