#include "App/DesignSystem/ScrollArea.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace vespra {

namespace {

    constexpr double thickness = 12, thumb = 6;

} // namespace

ScrollBar::ScrollBar(const Theme& theme, Qt::Orientation orientation)
    : QScrollBar{orientation}
    , theme_{theme}
    , follows_{theme, *this}
{
    setAttribute(Qt::WA_Hover);
}

QSize ScrollBar::sizeHint() const
{
    const int across = theme_.look.units(thickness);
    return {across, across}; // an area leaves a bar of an empty size out
}

void ScrollBar::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    // Where a drag takes hold is the style's to say.
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF slider = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const double inset = (look.scaled(thickness) - look.scaled(thumb)) / 2;
    const auto place
        = orientation() == Qt::Vertical ? slider.adjusted(inset, 2, -inset, -2) : slider.adjusted(2, inset, -2, -inset);
    painter.setPen(Qt::NoPen);
    painter.setBrush(underMouse() || isSliderDown() ? look.tokens().text3 : look.tokens().off);
    painter.drawRoundedRect(place, look.scaled(thumb) / 2, look.scaled(thumb) / 2);
}

void dressScrollBars(const Theme& theme, QAbstractScrollArea& area)
{
    area.setVerticalScrollBar(new ScrollBar{theme, Qt::Vertical});
    area.setHorizontalScrollBar(new ScrollBar{theme, Qt::Horizontal});
}

ScrollArea::ScrollArea(const Theme& theme)
{
    dressScrollBars(theme, *this);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
}

} // namespace vespra
