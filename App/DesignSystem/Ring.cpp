#include "App/DesignSystem/Ring.h"

#include "App/DesignSystem/Accessibility.h"
#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/TextBlock.h"

#include <QPainter>

namespace vespra {

namespace {

    /// From this many characters on a clock shows hours.
    constexpr std::size_t longClock = 6;
    /// Points that a text below the clock keeps free of the ring.
    constexpr double insideRing = 12;

} // namespace

Ring::Ring(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
    accessibility::install();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Ring::show(const Facts& facts)
{
    if (facts == facts_)
        return;
    facts_ = facts;
    setAccessibleName(qtText(facts.spoken));
    setAccessibleDescription(qtText(facts.subtitle));
    update();
}

QSize Ring::sizeHint() const { return QSize{1, 1} * theme_.look.units(measure::ringSize); }

void Ring::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    drawRing(painter, rect(), facts_.remaining, theme_.look.scale(), theme_.look.tokens());
    drawClock(painter);
}

void Ring::drawClock(QPainter& painter) const
{
    const auto& look = theme_.look;
    const auto style = facts_.clock.size() < longClock ? TextStyle::clock : TextStyle::longClock;
    const TextBlock clock{qtText(facts_.clock), look, style};
    TextBlock subtitle{qtText(facts_.subtitle), look, TextStyle::caption};
    const double gap = look.scale(), room = look.scaled(2 * measure::ringRadius - measure::ringStroke - insideRing);
    if (subtitle.size().width() > room)
        subtitle.wrap(room);
    const QRectF area{rect()};
    const double height = clock.size().height() + gap + subtitle.size().height();
    QRectF line{area.left(), area.center().y() - height / 2, area.width(), clock.size().height()};
    painter.setPen(look.tokens().text);
    clock.draw(painter, line, Qt::AlignCenter);
    line = {area.left(), line.bottom() + gap, area.width(), subtitle.size().height()};
    painter.setPen(look.tokens().text2);
    subtitle.draw(painter, line, Qt::AlignCenter);
}

} // namespace vespra
