#pragma once

#include "App/DesignSystem/Focus.h"

namespace vespra {

/// Makes `window` one of the look's: its ground and colours, also of what the style draws in it, and a ring around the
/// control that has the focus.
class WindowGround {
public:
    WindowGround(const Theme& theme, QWidget& window);

    /// For the window's `paintEvent`.
    void paint() const;

private:
    const Theme theme_;
    QWidget& window_;
    ObservationLoop loop_;
};

} // namespace vespra
