#include "App/DesignSystem/Ring.h"

#include "App/DesignSystem/Drawing.h"

#include <QPainter>

#include <algorithm>

namespace vespra {

namespace {

    /// From this many characters on a clock shows hours.
    constexpr std::size_t longClock = 6;

    bool isDigit(QChar character) { return character >= QLatin1Char('0') && character <= QLatin1Char('9'); }

    /// Digits all get the width of the widest, so that a clock stands still while it counts.
    double cell(const QFontMetricsF& metrics, QChar character)
    {
        if (!isDigit(character))
            return metrics.horizontalAdvance(character);
        double widest = 0;
        for (char digit = '0'; digit <= '9'; ++digit)
            widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
        return widest;
    }

    void drawInCells(QPainter& painter, const QString& text, QPointF middleOfBaseline)
    {
        const QFontMetricsF metrics{painter.font(), painter.device()};
        double width = 0;
        for (const auto character : text)
            width += cell(metrics, character);
        double left = middleOfBaseline.x() - width / 2;
        for (const auto character : text) {
            const double place = cell(metrics, character);
            const double inset = (place - metrics.horizontalAdvance(character)) / 2;
            painter.drawText(QPointF{left + inset, middleOfBaseline.y()}, QString{character});
            left += place;
        }
    }

} // namespace

Ring::Ring(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
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
    const auto clockFont = look.font(facts_.clock.size() < longClock ? TextStyle::clock : TextStyle::longClock);
    const auto subtitleFont = look.font(TextStyle::caption);
    const QFontMetricsF clock{clockFont}, subtitle{subtitleFont};
    constexpr double clockLine = 1.1, subtitleLine = 1.35; // of the size of the letters
    const double clockHeight = clockLine * clockFont.pointSizeF() * logicalDpiY() / 72;
    const double subtitleHeight = subtitleLine * subtitleFont.pointSizeF() * logicalDpiY() / 72;
    const QRectF area{rect()};
    const double top = area.center().y() - (clockHeight + subtitleHeight + look.scale()) / 2;
    const auto baseline = [](double lineTop, double lineHeight, const QFontMetricsF& metrics) {
        return lineTop + (lineHeight - metrics.ascent() - metrics.descent()) / 2 + metrics.ascent();
    };
    painter.setFont(clockFont);
    painter.setPen(look.tokens().text);
    drawInCells(painter, qtText(facts_.clock), {area.center().x(), baseline(top, clockHeight, clock)});
    painter.setFont(subtitleFont);
    painter.setPen(look.tokens().text2);
    drawInCells(painter,
        qtText(facts_.subtitle),
        {area.center().x(), baseline(top + clockHeight + look.scale(), subtitleHeight, subtitle)});
}

} // namespace vespra
