#include "App/DesignSystem/Following.h"
#include "App/Model/ComponentFacts.h"
#include "App/Settings/RowView.h"
#include "App/Settings/SpecialRows.h"
#include "App/Wording/Localized.h"

#include <QPainter>

namespace vespra {

namespace {

    using componentFacts::Mood;

    Ink ink(Mood mood)
    {
        switch (mood) {
        case Mood::fine:
            return &Tokens::ok;
        case Mood::inUse:
            return &Tokens::accent;
        case Mood::waiting:
            return &Tokens::info;
        case Mood::problem:
            return &Tokens::bad;
        case Mood::unavailable:
            break;
        }
        return &Tokens::text3;
    }

    QHBoxLayout* inRow(const Theme& theme, QWidget* place)
    {
        auto* row = new QHBoxLayout{place};
        row->setContentsMargins({});
        row->setSpacing(theme.look.units(measure::rowGap));
        return row;
    }

    /// The status and what can be done about it, side by side.
    QWidget* makeStatus(const SettingsSurface& surface)
    {
        auto* place = new QWidget;
        auto* row = inRow(surface.theme, place);
        auto& status = added(*row, new Activity{surface.theme});
        auto& button = added(*row, new Button{surface.theme, ButtonKind::plain, ButtonSize::small});
        follow(*place, surface.theme, [&status, &button, &model = surface.model] {
            const auto facts = componentFacts::status(model);
            status.show(facts.text, ink(facts.mood));
            button.setVisible(facts.action.has_value());
            if (facts.action)
                button.show(panelFacts::title(*facts.action));
        });
        QObject::connect(&button, &QPushButton::clicked, [&model = surface.model] {
            if (const auto action = componentFacts::status(model).action)
                componentFacts::perform(model, *action);
        });
        return place;
    }

} // namespace

QWidget* makeComponentRow(const SettingsSurface& surface)
{
    return new RowView{surface.theme, localized("Status"), makeStatus(surface)};
}

QWidget* makeChecklistRow(const SettingsSurface& surface)
{
    constexpr double gap = 5, side = 14, top = 9, bottom = 11;
    auto* place = new QWidget;
    auto* column = new QVBoxLayout{place};
    const auto& look = surface.theme.look;
    column->setContentsMargins(look.units(side), look.units(top), look.units(side), look.units(bottom));
    column->setSpacing(look.units(gap));
    std::vector<CheckLine*> lines;
    for (std::size_t count = panelFacts::closedLidChecks(surface.model).size(); count > 0; --count)
        lines.push_back(&added(*column, new CheckLine{surface.theme}));
    follow(*place, surface.theme, [lines, &model = surface.model] {
        const auto checks = panelFacts::closedLidChecks(model);
        for (std::size_t index = 0; index < lines.size(); ++index)
            lines[index]->show(checks[index].text, checks[index].state);
    });
    return place;
}

} // namespace vespra
