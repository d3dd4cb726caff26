#include "App/DesignSystem/Glyph.h"

#include <QPainter>

namespace vespra {

Glyph::Glyph(const Theme& theme, const std::string& letters)
    : theme_{theme}
    , letters_{qtText(letters)}
    , follows_{theme, *this}
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Glyph::sizeHint() const { return QSize{1, 1} * theme_.look.units(measure::glyphSize); }

void Glyph::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.tokens().surface2);
    painter.drawRoundedRect(rect(), look.scaled(measure::glyphRadius), look.scaled(measure::glyphRadius));
    painter.setFont(look.font(TextStyle::glyph));
    painter.setPen(look.tokens().text2);
    painter.drawText(rect(), Qt::AlignCenter, letters_);
}

} // namespace vespra
