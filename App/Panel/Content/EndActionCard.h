#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Card.h"
#include "App/Model/AgentFacts.h"
#include "App/Panel/Content/PanelContext.h"

namespace vespra {

/// What is forced on the machine when the agents are done, and whether it is left out this time.
class EndActionCard final : public QWidget {
public:
    explicit EndActionCard(const PanelContext& context);

private:
    void show(const std::optional<panelFacts::EndAction>& facts);

    const PanelContext& context_;
    Label* name_;
    Row* action_;
    Switch* skips_;
    ObservationLoop loop_;
};

} // namespace vespra
