#pragma once

#include "App/DesignSystem/Look.h"
#include "Core/Observation/ObservationLoop.h"

#include <QObject>

namespace vespra {

/// A look that follows the system's appearance and font. Main thread only.
class SystemLook final : public QObject {
public:
    /// Both outlive it.
    SystemLook(MainLoop& mainLoop, const AppearanceMonitoring& appearance);

    const Look& look() const { return look_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Look look_;
    ObservationLoop loop_;
};

} // namespace vespra
