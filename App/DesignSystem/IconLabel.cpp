#include "App/DesignSystem/IconLabel.h"

#include "App/DesignSystem/Icon.h"

#include <QPainter>

namespace vespra {

IconLabel::IconLabel(const Theme& theme, double size, Ink ink)
    : theme_{theme}
    , size_{size}
    , ink_{ink}
    , follows_{theme, *this}
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void IconLabel::show(std::string_view icon, Ink ink)
{
    icon_ = icon;
    ink_ = ink;
    update();
}

QSize IconLabel::sizeHint() const { return QSize{1, 1} * theme_.look.units(size_); }

void IconLabel::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    if (!icon_.empty())
        drawIcon(painter, icon_, rect(), theme_.look.tokens().*ink_);
}

} // namespace vespra
