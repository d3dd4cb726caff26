#include "App/Panel/Content/ModeView.h"

#include "App/Model/PanelFacts.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"

namespace vespra {

namespace {

    /// In the order of the segments.
    constexpr std::array modes{SessionMode::timer, SessionMode::until, SessionMode::unlimited, SessionMode::agent};

    SegmentedControl* modePicker(const PanelContext& context)
    {
        std::vector<std::string> titles;
        for (const auto mode : modes)
            titles.push_back(title(mode));
        auto* picker = new SegmentedControl{context.theme, titles};
        picker->setAccessibleName(qtText(localized("Mode")));
        picker->onChoose = [&model = context.model](std::size_t index) {
            auto next = model.preferences();
            next.mode = modes.at(index);
            model.setPreferences(next);
        };
        return picker;
    }

    std::size_t segment(SessionMode mode)
    {
        return static_cast<std::size_t>(std::ranges::find(modes, mode) - modes.begin());
    }

    std::function<void()> step(AppModel& model, std::optional<SessionPreferences> panelFacts::ModeSetting::* to)
    {
        return [&model, to] {
            const auto setting = panelFacts::modeSetting(model);
            if (const auto next = setting ? (*setting).*to : std::nullopt)
                model.setPreferences(*next);
        };
    }

} // namespace

ModeView::ModeView(const PanelContext& context)
    : context_{context}
    , column_{new QVBoxLayout{this}}
    , modes_{modePicker(context)}
    , setting_{new Card{context.theme}}
    , row_{new QHBoxLayout{&setting_->add(new QWidget)}}
    , label_{new Label{context.theme, TextStyle::body}}
    , stepper_{new Stepper{context.theme}}
    , unlimited_{new Label{context.theme, TextStyle::caption, &Tokens::text2}}
    , follows_{context.theme, *this, [this] { layOut(); }}
    , loop_{context.theme.mainLoop, [this, &model = context.model] {
                context_.setShown(*this, !model.coordinator().state().isActive());
                modes_->show(segment(model.preferences().mode));
                context_.setShown(*unlimited_, model.preferences().mode == SessionMode::unlimited);
                showSetting(model);
            }}
{
    column_->setContentsMargins({});
    column_->addWidget(modes_);
    column_->addWidget(setting_);
    column_->addWidget(unlimited_);
    row_->addWidget(label_, 1);
    row_->addWidget(stepper_);
    stepper_->onDecrement = step(context.model, &panelFacts::ModeSetting::decrement);
    stepper_->onIncrement = step(context.model, &panelFacts::ModeSetting::increment);

    unlimited_->setAlignment(Qt::AlignCenter);
    unlimited_->show(localized("Runs until you stop it. Guardrails still apply."));
}

void ModeView::layOut()
{
    const auto& look = context_.theme.look;
    const int padding = look.units(measure::rowPadding);
    column_->setSpacing(look.units(measure::panelGap));
    row_->setContentsMargins(padding, 0, padding, 0);
    row_->setSpacing(look.units(measure::rowGap));
    row_->parentWidget()->setMinimumHeight(look.units(measure::rowHeight));
}

void ModeView::showSetting(const AppModel& model)
{
    const auto setting = panelFacts::modeSetting(model);
    context_.setShown(*setting_, setting.has_value());
    if (!setting)
        return;
    label_->show(setting->label);
    stepper_->show({
        .name = setting->label,
        .value = setting->value,
        .spokenValue = setting->spokenValue,
        .canDecrement = setting->canDecrement(),
        .canIncrement = setting->canIncrement(),
    });
}

} // namespace vespra
