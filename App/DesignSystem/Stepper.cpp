#include "App/DesignSystem/Stepper.h"

#include "App/Wording/Localized.h"

#include <QHBoxLayout>
#include <QKeyEvent>

namespace vespra {

namespace {

    IconButton* stepButton(const Theme& theme, std::string_view icon)
    {
        // Milliseconds: a pause that a single press does not reach, then ten steps a second.
        constexpr int pause = 400, interval = 100;
        auto* button = new IconButton{theme, icon, measure::stepperButton, true};
        button->setAutoRepeat(true);
        button->setAutoRepeatDelay(pause);
        button->setAutoRepeatInterval(interval);
        return button;
    }

} // namespace

Stepper::Stepper(const Theme& theme)
    : decrement_{stepButton(theme, "minus")}
    , value_{new Label{theme, TextStyle::strong}}
    , increment_{stepButton(theme, "plus")}
{
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(decrement_);
    row->addWidget(value_);
    row->addWidget(increment_);
    value_->setAlignment(Qt::AlignCenter);
    value_->setWordWrap(false);
    value_->setMinimumWidth(theme.look.units(measure::stepperValue));
    connect(decrement_, &QPushButton::clicked, this, [this] { notify(onDecrement); });
    connect(increment_, &QPushButton::clicked, this, [this] { notify(onIncrement); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Stepper::show(const Facts& facts)
{
    value_->show(facts.value);
    value_->setAccessibleName(qtText(facts.spokenValue));
    setAccessibleName(qtText(facts.name));
    decrement_->setName(localized("Less: %1, %2", {facts.name, facts.spokenValue}));
    increment_->setName(localized("More: %1, %2", {facts.name, facts.spokenValue}));
    decrement_->setEnabled(facts.canDecrement);
    increment_->setEnabled(facts.canIncrement);
}

/// The arrows step while either button has the focus.
void Stepper::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Plus:
        return increment_->click();
    case Qt::Key_Down:
    case Qt::Key_Minus:
        return decrement_->click();
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace vespra
