#include "App/Onboarding/OnboardingWindow.h"

#include "App/DesignSystem/Following.h"
#include "App/Onboarding/StepViews.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

#include <QCloseEvent>
#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>

namespace vespra {

namespace {

    constexpr double windowTop = 26, windowSide = 44, windowBottom = 30, windowGap = 12;
    constexpr double aboveButtons = 8, betweenButtons = 8, aboveDots = 4;

    Button* makeButton(const Theme& theme, ButtonKind kind)
    {
        auto* button = new Button{theme, kind};
        // Return presses what has the focus, as Space does.
        button->setAutoDefault(true);
        return button;
    }

} // namespace

OnboardingWindow::OnboardingWindow(const SurfaceContext& context, const Theme& theme)
    : model_{context.model}
    , theme_{theme}
    , contents_{new QWidget{this}}
    , symbol_{new SymbolPlate{theme}}
    , title_{new Label{theme, TextStyle::title}}
    , message_{new Label{theme, TextStyle::body, &Tokens::text2}}
    , status_{new StatusLine{theme}}
    , primary_{makeButton(theme, ButtonKind::primary)}
    , secondary_{makeButton(theme, ButtonKind::quiet)}
    , dots_{new StepDots{theme, onboardingStepCount}}
    , ground_{theme, *this}
{
    setWindowTitle(qtText(localized("Welcome to %1", {Brand::appName()})));
    const auto& look = theme.look;
    auto* window = new QVBoxLayout{this};
    window->setContentsMargins({});
    window->addWidget(contents_);
    auto* column = new QVBoxLayout{contents_};
    const int side = look.units(windowSide);
    column->setContentsMargins(side, look.units(windowTop), side, look.units(windowBottom));
    column->setSpacing(look.units(windowGap));
    column->addWidget(symbol_, 0, Qt::AlignHCenter);
    column->addWidget(title_);
    column->addWidget(message_);
    column->addWidget(status_, 0, Qt::AlignHCenter);
    auto* buttons = new QVBoxLayout;
    buttons->setContentsMargins(0, look.units(aboveButtons), 0, look.units(aboveDots));
    buttons->setSpacing(look.units(betweenButtons));
    buttons->addWidget(primary_);
    buttons->addWidget(secondary_);
    column->addLayout(buttons);
    column->addWidget(dots_, 0, Qt::AlignHCenter);
    for (auto* label : {title_, message_})
        label->setAlignment(Qt::AlignCenter);
    connect(primary_, &QPushButton::clicked, this, [this] { perform(actions_.front()); });
    connect(secondary_, &QPushButton::clicked, this, [this] { perform(actions_.back()); });
    // Not before every part has its place: alone it would be a window of its own.
    follow(*this, theme, [this] {
        dots_->show(static_cast<int>(step_.get()));
        display(onboardingFacts(model_, step_.get()));
    });
    primary_->setFocus();
}

void OnboardingWindow::go(OnboardingStep step)
{
    step_.set(step);
    if (step == OnboardingStep::closedLid)
        if (const auto& controller = model_.closedLid())
            controller->refreshStatus();
    primary_->setFocus();
    if (!theme_.look.appearance().reducesMotion)
        fadeIn();
}

void OnboardingWindow::fadeIn()
{
    auto* effect = new QGraphicsOpacityEffect{contents_};
    effect->setOpacity(0);
    contents_->setGraphicsEffect(effect);
    auto* fading = new QPropertyAnimation{effect, "opacity", effect};
    fading->setDuration(motion::appear);
    fading->setEndValue(1);
    connect(fading, &QPropertyAnimation::finished, contents_, [this] { contents_->setGraphicsEffect(nullptr); });
    fading->start();
}

void OnboardingWindow::display(const OnboardingFacts& facts)
{
    symbol_->show(facts.symbol);
    title_->show(facts.title);
    message_->show(facts.message);
    status_->setVisible(facts.status.has_value());
    if (facts.status)
        status_->show(*facts.status);
    actions_ = facts.actions;
    primary_->show(title(actions_.front()));
    secondary_->setVisible(actions_.size() > 1);
    secondary_->show(title(actions_.back()));
    fit();
}

/// As high as what it shows.
void OnboardingWindow::fit()
{
    if (!layout())
        return;
    const int width = theme_.look.units(measure::onboardingWidth);
    setFixedSize(width, layout()->totalHeightForWidth(width));
}

void OnboardingWindow::perform(OnboardingAction action)
{
    const auto& controller = model_.closedLid();
    switch (action) {
    case OnboardingAction::openAtLogin:
        model_.loginItem().setEnabled(true);
        return go(OnboardingStep::closedLid);
    case OnboardingAction::notNow:
    case OnboardingAction::proceed:
        return go(OnboardingStep::closedLid);
    case OnboardingAction::setUp:
        // One at a time: the system may be asking the user already.
        if (controller && !controller->isRegistering())
            controller->install();
        return;
    case OnboardingAction::openSystemSettings:
        if (controller)
            controller->openApproval();
        return;
    case OnboardingAction::later:
    case OnboardingAction::done:
        close();
    }
}

bool OnboardingWindow::event(QEvent* event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fit();
    return isHandled;
}

void OnboardingWindow::closeEvent(QCloseEvent* event)
{
    event->accept();
    notify(onFinish);
}

} // namespace vespra
