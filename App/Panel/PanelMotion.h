#pragma once

#include "App/Panel/PanelPresentation.h"
#include "Core/Observation/ObservationLoop.h"

#include <QVariantAnimation>

namespace vespra {

/// Has the panel come and go as its presentation says, step by step. Main thread only.
class PanelMotion {
public:
    /// `apply` gets how far it has come, 0 (gone) to 1 (there). Gone at first.
    PanelMotion(MainLoop& mainLoop, const PanelPresentation& presentation, std::function<void(double)> apply);

    double progress() const { return progress_; }

private:
    void moveTo(double end, Seconds length);
    void apply(double progress);

    std::function<void(double)> apply_;
    double progress_ = 0;
    QVariantAnimation animation_;
    ObservationLoop loop_;
};

} // namespace vespra
