#include "App/Panel/Content/PanelContext.h"

#include <QAccessible>

namespace vespra {

namespace {

    bool hasFocusInside(const QWidget& part)
    {
        const auto* focused = part.window()->focusWidget();
        return focused && (focused == &part || part.isAncestorOf(focused));
    }

} // namespace

void PanelContext::setShown(QWidget& part, bool isShown) const
{
    // A part that was never hidden comes with its parent; shown without one, it would be a window.
    const bool isHidden = part.isHidden() && part.testAttribute(Qt::WA_WState_ExplicitShowHide);
    if (isHidden != isShown)
        return;
    if (!isShown && hasFocusInside(part))
        notify(takeFocus);
    part.setVisible(isShown);
}

void announce(QWidget& part)
{
    QAccessibleEvent event{&part, QAccessible::Alert};
    QAccessible::updateAccessibility(&event);
}

} // namespace vespra
