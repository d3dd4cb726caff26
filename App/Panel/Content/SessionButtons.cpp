#include "App/Panel/Content/SessionButtons.h"

#include "App/Model/NoticeFacts.h"
#include "App/Model/PanelFacts.h"
#include "App/Wording/Localized.h"

#include <QHBoxLayout>

namespace vespra {

namespace {

    constexpr double buttonGap = 8; // points

    Button* sessionButton(const PanelContext& context, ButtonKind kind, const std::string& text, void (*act)(AppModel&))
    {
        auto* button = new Button{context.theme, kind};
        button->show(text);
        // Return is the panel's: one that is held must not start and stop in turn.
        button->setAutoDefault(false);
        QObject::connect(button, &QPushButton::clicked, button, [&model = context.model, act] { act(model); });
        return button;
    }

    /// What a screen reader adds to a start button that does not work.
    QString reason(const AppModel& model)
    {
        const auto blocker = panelFacts::blockerNotice(model);
        const auto connect = panelFacts::connectNotice(model);
        return qtText(blocker ? blocker->title : connect ? connect->title : "");
    }

} // namespace

SessionButtons::SessionButtons(const PanelContext& context)
    : context_{context}
    , row_{new QHBoxLayout{this}}
    , start_{sessionButton(context, ButtonKind::primary, localized("Start"), [](AppModel& model) { model.start(); })}
    , extend_{sessionButton(
          context, ButtonKind::plain, localized("+15 min"), [](AppModel& model) { model.coordinator().extend(); })}
    , stop_{sessionButton(context, ButtonKind::stop, localized("Stop"),
          [](AppModel& model) { model.coordinator().stop(end::StoppedByUser{}); })}
    , follows_{context.theme, *this, [this] { row_->setSpacing(context_.theme.look.units(buttonGap)); }}
    , loop_{context.theme.mainLoop, [this, &model = context.model, &clock = context.clock] { follow(model, clock); }}
{
    row_->setContentsMargins({});
    for (auto* button : {start_, extend_, stop_})
        row_->addWidget(button, 1);
}

void SessionButtons::follow(const AppModel& model, const PanelClock& clock)
{
    const auto* session = model.coordinator().state().activeSession();
    const bool hadFocus = start_->hasFocus() || extend_->hasFocus() || stop_->hasFocus();
    start_->setEnabled(panelFacts::canStart(model));
    start_->setAccessibleDescription(reason(model));
    const bool canExtend = model.coordinator().canExtend();
    extend_->setEnabled(canExtend);
    // As time goes by, an end that was as far away as it may be comes nearer.
    if (session && isExtendable(session->plan) && !canExtend)
        clock.now(panelFacts::clockAnchor(*session));
    context_.setShown(*stop_, session);
    context_.setShown(*extend_, session && isExtendable(session->plan));
    context_.setShown(*start_, !session);
    if (hadFocus)
        takeFocus();
}

bool SessionButtons::takeFocus() const
{
    auto* button = start_->isHidden() ? stop_ : start_;
    if (button->isEnabled())
        button->setFocus(Qt::OtherFocusReason);
    return button->isEnabled();
}

void SessionButtons::pressReturn() const
{
    if (!start_->isHidden() && start_->isEnabled())
        start_->click();
}

} // namespace vespra
