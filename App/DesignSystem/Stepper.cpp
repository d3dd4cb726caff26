#include "App/DesignSystem/Stepper.h"

#include "App/DesignSystem/Accessibility.h"
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

    /// At the end of the values the focus goes to the other button, not to another control.
    void enable(IconButton& button, bool isEnabled, IconButton& other)
    {
        const bool hasFocus = button.hasFocus();
        if (!isEnabled && hasFocus) {
            other.setEnabled(true);
            other.setFocus(Qt::OtherFocusReason);
        }
        button.setEnabled(isEnabled);
    }

} // namespace

Stepper::Stepper(const Theme& theme)
    : decrement_{stepButton(theme, "minus")}
    , value_{new Label{theme, TextStyle::strong}}
    , increment_{stepButton(theme, "plus")}
    , follows_{theme, *this, [this, &look = theme.look] { value_->setMinimumWidth(look.units(measure::stepperValue)); }}
{
    accessibility::install();
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(decrement_);
    row->addWidget(value_);
    row->addWidget(increment_);
    value_->setAlignment(Qt::AlignCenter);
    value_->setWordWrap(false);
    connect(decrement_, &QPushButton::clicked, this, [this] { notify(onDecrement); });
    connect(increment_, &QPushButton::clicked, this, [this] { notify(onIncrement); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Stepper::show(const Facts& facts)
{
    if (facts == facts_)
        return;
    facts_ = facts;
    value_->show(facts.value, facts.spokenValue);
    setAccessibleName(qtText(facts.name));
    setAccessibleDescription(qtText(facts.spokenValue));
    decrement_->setName(localized("Less: %1, %2", {facts.name, facts.spokenValue}));
    increment_->setName(localized("More: %1, %2", {facts.name, facts.spokenValue}));
    enable(*decrement_, facts.canDecrement, *increment_);
    enable(*increment_, facts.canIncrement, *decrement_);
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
