#pragma once

#include "App/DesignSystem/Look.h"
#include "Core/Observation/ObservationLoop.h"

#include <QLayout>
#include <QWidget>

#include <functional>
#include <string>

namespace vespra {

/// What every control is made with; both outlive it.
struct Theme {
    MainLoop& mainLoop;
    const Look& look;
};

/// Draws `widget` anew, at its new size, whenever the look changes.
class FollowsLook {
public:
    /// `layOut` sets what the widget has from the look beside its hints, such as margins: now, and after each change.
    FollowsLook(const Theme& theme, QWidget& widget, std::function<void()> layOut = {})
        : loop_{theme.mainLoop, [&look = theme.look, &widget, layOut = std::move(layOut)] {
                    look.tokens();
                    look.scale();
                    if (layOut)
                        layOut();
                    widget.updateGeometry();
                    widget.update();
                }}
    {
    }

private:
    ObservationLoop loop_;
};

inline QString qtText(const std::string& text) { return QString::fromStdString(text); }

/// Adds a child to a layout and returns it.
template <class Widget, class Layout> Widget& added(Layout& layout, Widget* widget, int stretch = 0)
{
    layout.addWidget(widget, stretch);
    return *widget;
}

} // namespace vespra
