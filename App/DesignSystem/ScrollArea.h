#pragma once

#include "App/DesignSystem/Theme.h"

#include <QScrollArea>
#include <QScrollBar>

namespace vespra {

/// A bar without buttons, as thin as can be hit, in the look's colours.
class ScrollBar final : public QScrollBar {
public:
    ScrollBar(const Theme& theme, Qt::Orientation orientation);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    FollowsLook follows_;
};

/// Gives `area` bars of the look.
void dressScrollBars(const Theme& theme, QAbstractScrollArea& area);

/// A part of a window that scrolls up and down where its contents need it, and keeps what has the focus in view.
class ScrollArea final : public QScrollArea {
public:
    explicit ScrollArea(const Theme& theme);
};

} // namespace vespra
