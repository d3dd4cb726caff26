#include "App/Panel/Content/Header.h"

#include "App/DesignSystem/Icon.h"
#include "App/DesignSystem/Label.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

#include <QHBoxLayout>
#include <QPainter>

namespace vespra {

namespace {

    // Points.
    constexpr double headerHeight = 24, headerInset = 2, markWidth = 23, markGap = 8, gearSize = 28;

} // namespace

Header::Header(const PanelContext& context)
    : theme_{context.theme}
    , row_{new QHBoxLayout{this}}
    , follows_{context.theme, *this, [this] { layOut(); }}
{
    row_->setSpacing(0);
    added(*row_, new Label{theme_, TextStyle::strong}, 1).show(Brand::appName());
    auto& gear = added(*row_, new IconButton{theme_, "gearshape", gearSize, false});
    gear.setName(localized("Settings…"));
    connect(&gear, &QPushButton::clicked, this, [&model = context.model] { notify(model.showSettings, std::nullopt); });
}

void Header::layOut()
{
    const auto& look = theme_.look;
    const int lead = look.units(headerInset + markWidth + markGap);
    isRightToLeft() ? row_->setContentsMargins(0, 0, lead, 0) : row_->setContentsMargins(lead, 0, 0, 0);
    setFixedHeight(look.units(headerHeight));
}

void Header::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    const double width = look.scaled(markWidth), inset = look.scaled(headerInset);
    const double left = isRightToLeft() ? this->width() - inset - width : inset;
    drawMark(painter, {left, 0, width, static_cast<double>(height())}, look.tokens().text);
}

} // namespace vespra
