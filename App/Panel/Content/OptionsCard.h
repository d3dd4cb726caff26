#pragma once

#include "App/Panel/Content/ClosedLidView.h"

namespace vespra {

/// What a session does besides keeping the machine awake: of the one that runs, else of the next one.
class OptionsCard final : public QWidget {
public:
    explicit OptionsCard(const PanelContext& context);

private:
    Switch* display_;
    ObservationLoop loop_;
};

} // namespace vespra
