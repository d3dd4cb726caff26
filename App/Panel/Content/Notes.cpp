#include "App/Panel/Content/Notes.h"

#include "App/DesignSystem/Buttons.h"
#include "App/Wording/Localized.h"

namespace vespra::notes {

namespace {

    QWidget* noteButton(const PanelContext& context, const std::string& text, std::function<void()> onClick)
    {
        auto* button = new Button{context.theme, ButtonKind::plain, ButtonSize::small};
        button->show(text);
        QObject::connect(button, &QPushButton::clicked, button, std::move(onClick));
        return button;
    }

    QWidget* dismissButton(const PanelContext& context)
    {
        auto* button = new IconButton{context.theme, "xmark", measure::iconSize, false};
        button->setName(localized("Dismiss"));
        QObject::connect(button, &QPushButton::clicked, button, [&model = context.model] { model.dismissEnd(); });
        return button;
    }

    NoticeView* plain(const PanelContext& context, NoteKind kind,
        std::optional<panelFacts::Notice> (*facts)(const AppModel&), QWidget* control = nullptr)
    {
        return new NoticeView{context, kind, control, [facts, &model = context.model] { return facts(model); }};
    }

} // namespace

NoticeView* forcedAction(const PanelContext& context)
{
    auto& model = context.model;
    auto* cancel = noteButton(context, localized("Cancel"), [&model] { model.forcedEndAction().cancel(); });
    return new NoticeView{context, NoteKind::bad, cancel, [&model, &clock = context.clock] {
                              const auto& pending = model.forcedEndAction().pending();
                              return pending ? std::optional{panelFacts::forcedActionNotice(
                                                   model, *pending, clock.now(pending->deadline))}
                                             : std::nullopt;
                          }};
}

NoticeView* guardrailEnd(const PanelContext& context)
{
    return plain(context, NoteKind::warn, panelFacts::endNotice, dismissButton(context));
}

NoticeView* connectAgent(const PanelContext& context)
{
    auto* connect = noteButton(
        context, localized("Connect…"), [&model = context.model] { notify(model.showSettings, SettingsTab::agent); });
    return plain(context, NoteKind::info, panelFacts::connectNotice, connect);
}

NoticeView* startBlocker(const PanelContext& context)
{
    return plain(context, NoteKind::warn, panelFacts::blockerNotice);
}

NoticeView* heat(const PanelContext& context) { return plain(context, NoteKind::warn, panelFacts::heatNotice); }

NoticeView* closedLidRefusal(const PanelContext& context)
{
    return plain(context, NoteKind::warn, panelFacts::closedLidRefusalNotice);
}

NoticeView* finishing(const PanelContext& context)
{
    auto& model = context.model;
    auto* keep = noteButton(context, localized("Keep awake"), [&model] {
        if (const auto condition = model.agentCondition())
            condition->keepAwake();
    });
    return new NoticeView{context, NoteKind::ok, keep, [&model, &clock = context.clock] {
                              const auto end = panelFacts::finishingEnd(model);
                              return end ? std::optional{panelFacts::finishingNotice(model, *end, clock.now(*end))}
                                         : std::nullopt;
                          }};
}

NoticeView* agentPhase(const PanelContext& context)
{
    return plain(context, NoteKind::info, panelFacts::agentPhaseNotice);
}

} // namespace vespra::notes
