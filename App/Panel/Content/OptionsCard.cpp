#include "App/Panel/Content/OptionsCard.h"

#include "App/Wording/Localized.h"

namespace vespra {

OptionsCard::OptionsCard(const PanelContext& context)
    : display_{new Switch{context.theme}}
    , loop_{context.theme.mainLoop, [this, &model = context.model] { display_->show(model.keepsDisplayAwake()); }}
{
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    auto& card = added(*column, new Card{context.theme});
    card.add(new Row{context.theme, localized("Keep display on"), display_});
    card.add(new ClosedLidView{context});

    display_->onSwitch = [&model = context.model](bool isOn) { model.setKeepsDisplayAwake(isOn); };
}

} // namespace vespra
