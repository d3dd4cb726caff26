#include "App/Panel/Content/Hero.h"

#include "App/Model/NoticeFacts.h"
#include "App/Model/PanelFacts.h"

namespace vespra {

namespace {

    Ring::Facts ringFacts(const panelFacts::SessionClock& clock)
    {
        return {.clock = clock.clock,
            .subtitle = clock.subtitle,
            .spoken = clock.spoken,
            .remaining = clock.remainingFraction};
    }

    void showLine(const PanelContext& context, Label& line, const std::optional<std::string>& text)
    {
        context.setShown(line, text.has_value());
        line.show(text.value_or(""));
    }

} // namespace

Hero::Hero(const PanelContext& context)
    : context_{context}
    , column_{new QVBoxLayout{this}}
    , ring_{new Ring{context.theme}}
    , guardrails_{new Label{context.theme, TextStyle::caption, &Tokens::text2}}
    , command_{new Label{context.theme, TextStyle::caption, &Tokens::text2}}
    , follows_{context.theme, *this, [this] { layOut(); }}
    , clock_{context.theme.mainLoop,
          [this, &model = context.model, &clock = context.clock] {
              const auto* session = model.coordinator().state().activeSession();
              context_.setShown(*this, session);
              if (session)
                  ring_->show(
                      ringFacts(panelFacts::sessionClock(*session, clock.now(panelFacts::clockAnchor(*session)))));
          }}
    , lines_{context.theme.mainLoop, [this, &model = context.model] {
                 showLine(context_, *guardrails_, panelFacts::guardrailSummary(model));
                 showLine(context_, *command_, panelFacts::commandLine(model));
             }}
{
    column_->addWidget(ring_, 0, Qt::AlignHCenter);
    for (auto* line : {guardrails_, command_}) {
        line->setAlignment(Qt::AlignCenter);
        column_->addWidget(line);
    }
}

void Hero::layOut()
{
    constexpr double gap = 10, above = 4, below = 2; // points
    const auto& look = context_.theme.look;
    column_->setContentsMargins(0, look.units(above), 0, look.units(below));
    column_->setSpacing(look.units(gap));
}

} // namespace vespra
