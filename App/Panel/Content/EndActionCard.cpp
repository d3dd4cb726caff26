#include "App/Panel/Content/EndActionCard.h"

#include "App/Wording/Localized.h"

namespace vespra {

EndActionCard::EndActionCard(const PanelContext& context)
    : context_{context}
    , name_{new Label{context.theme, TextStyle::caption, &Tokens::text2}}
    , action_{new Row{context.theme, localized("When agents are done"), name_}}
    , skips_{new Switch{context.theme}}
    , loop_{context.theme.mainLoop, [this, &model = context.model] { show(panelFacts::endAction(model)); }}
{
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    auto& card = added(*column, new Card{context.theme});
    card.add(action_);
    card.add(new Row{context.theme, localized("Skip this time"), skips_});

    name_->setWordWrap(false);
    skips_->onSwitch = [&model = context.model](bool isOn) { model.setSkipsForcedActionThisSession(isOn); };
}

void EndActionCard::show(const std::optional<panelFacts::EndAction>& facts)
{
    context_.setShown(*this, facts.has_value());
    if (!facts)
        return;
    name_->show(facts->name);
    action_->showSubtitle(facts->detail);
    skips_->show(facts->isSkipped);
}

} // namespace vespra
