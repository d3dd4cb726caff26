#include "App/Settings/PageView.h"

#include "App/DesignSystem/Following.h"
#include "App/DesignSystem/PopupButton.h"
#include "App/Settings/RowView.h"
#include "App/Settings/SettingFacts.h"
#include "App/Settings/SpecialRows.h"
#include "App/Wording/Localized.h"

namespace vespra {

namespace {

    constexpr double pageTop = 18, pageSide = 28, pageBottom = 26, pageGap = 8;
    constexpr double titleTop = 10, textIndent = 4;

    Label* caption(const Theme& theme, TextStyle style, double top = 0)
    {
        const int indent = theme.look.units(textIndent);
        auto* label = new Label{theme, style, &Tokens::text2};
        label->setContentsMargins(indent, theme.look.units(top), indent, 0);
        return label;
    }

    QWidget* make(const SettingsSurface& surface, const SwitchRow& row)
    {
        auto* control = new Switch{surface.theme};
        auto* view = new RowView{surface.theme, localized(row.setting->label), control};
        if (!row.setting->subtitle.empty())
            view->showSubtitle(localized(row.setting->subtitle));
        control->onSwitch = [row, &model = surface.model](bool isOn) { settingFacts::setOn(row, model, isOn); };
        follow(*view, surface.theme, [row, control, &model = surface.model] {
            control->show(settingFacts::isOn(*row.setting, model));
        });
        return view;
    }

    QWidget* make(const SettingsSurface& surface, const StepperRow& row)
    {
        auto* control = new Stepper{surface.theme};
        auto* view = new RowView{surface.theme, localized(row.label), control};
        control->onDecrement = [row, &model = surface.model] { settingFacts::step(row, model, false); };
        control->onIncrement = [row, &model = surface.model] { settingFacts::step(row, model, true); };
        follow(*view, surface.theme, [row, control, &model = surface.model] {
            control->show(settingFacts::stepperFacts(row, model));
        });
        return view;
    }

    QWidget* make(const SettingsSurface& surface, const ChoiceRow& row)
    {
        auto* control = new PopupButton{surface.theme, settingFacts::choices(*row.setting)};
        auto* view = new RowView{surface.theme, localized(row.label), control};
        control->onChoose
            = [row, &model = surface.model](std::size_t index) { settingFacts::choose(*row.setting, model, index); };
        follow(*view, surface.theme, [row, control, view, &model = surface.model] {
            control->show(settingFacts::chosen(*row.setting, model));
            view->showSubtitle(settingFacts::choiceExplanation(*row.setting, model));
        });
        return view;
    }

    QWidget* make(const SettingsSurface& surface, const FixedRow& row)
    {
        auto* value = new Label{surface.theme, TextStyle::caption, &Tokens::text2};
        value->setWordWrap(false);
        auto* view = new RowView{surface.theme, localized(row.label), value};
        value->show(row.value);
        return view;
    }

    QWidget* make(const SettingsSurface& surface, const AgentRow& row) { return makeAgentRow(surface, row.kind); }

    QWidget* make(const SettingsSurface& surface, SpecialRow row) { return makeSpecialRow(surface, row); }

    QVBoxLayout& columnOf(QWidget& widget) { return *static_cast<QVBoxLayout*>(widget.layout()); }

    void addCaption(QWidget& page, const SettingsSurface& surface, const std::function<std::string()>& text)
    {
        auto& label = added(columnOf(page), caption(surface.theme, TextStyle::caption));
        follow(label, surface.theme, [&label, text] { label.show(text()); });
    }

    void addSection(QWidget& page, const SettingsSurface& surface, const PageSection& section)
    {
        if (!section.title.empty())
            added(columnOf(page), caption(surface.theme, TextStyle::section, titleTop)).show(localized(section.title));
        if (!section.explanation.empty())
            addCaption(page, surface, [text = section.explanation] { return text; });
        auto* place = &columnOf(page);
        if (section.hasCard)
            place = &columnOf(added(*place, new Card{surface.theme}));
        for (const auto& row : section.rows) {
            auto* view = std::visit([&](const auto& each) { return make(surface, each); }, row);
            place->addWidget(view);
            follow(*view, surface.theme, [row, view, &model = surface.model] {
                view->setVisible(settingFacts::isShown(row, model));
            });
        }
        if (section.note)
            addCaption(page, surface, [note = section.note, &model = surface.model] { return note(model); });
    }

} // namespace

QWidget* makePageView(const SettingsSurface& surface, const Page& page)
{
    auto* view = new QWidget;
    auto* layout = new QVBoxLayout{view};
    const auto& look = surface.theme.look;
    const int side = look.units(pageSide);
    layout->setContentsMargins(side, look.units(pageTop), side, look.units(pageBottom));
    layout->setSpacing(look.units(pageGap));
    for (const auto& section : page)
        addSection(*view, surface, section);
    layout->addStretch();
    return view;
}

} // namespace vespra
