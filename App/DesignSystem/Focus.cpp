#include "App/DesignSystem/Focus.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace vespra {

namespace {

    constexpr const char* radiusProperty = "vespra.focusRadius";

    bool movesFocus(const QEvent& event)
    {
        constexpr std::array keys{Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down};
        return event.type() == QEvent::KeyPress
            && std::ranges::find(keys, static_cast<const QKeyEvent&>(event).key()) != keys.end();
    }

    bool movesControl(const QEvent& event)
    {
        constexpr std::array types{QEvent::Move, QEvent::Resize, QEvent::Show, QEvent::Hide};
        return std::ranges::find(types, event.type()) != types.end();
    }

    /// Whether `object` is the control, or something that it is in.
    bool isAround(const QObject* object, const QWidget& control)
    {
        const auto* widget = qobject_cast<const QWidget*>(object);
        return widget && (widget == &control || widget->isAncestorOf(&control));
    }

} // namespace

ControlState controlState(const QAbstractButton& button)
{
    return {
        .isEnabled = button.isEnabled(),
        .isHovered = button.underMouse(),
        .isPressed = button.isDown(),
    };
}

FocusRing::FocusRing(const Theme& theme, QWidget& window)
    : QWidget{&window}
    , theme_{theme}
    , window_{window}
    , follows_{theme, *this, [this] { place(); }}
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

void FocusRing::setRadius(QWidget& control, double radius) { control.setProperty(radiusProperty, radius); }

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress && std::exchange(usesKeyboard_, false))
        follow(nullptr);
    if (movesFocus(*event) && !std::exchange(usesKeyboard_, true))
        follow(QApplication::focusWidget());
    if (control_ && movesControl(*event) && isAround(watched, *control_))
        place();
    return false;
}

void FocusRing::follow(QWidget* focused)
{
    const bool isHere = focused && focused != &window_ && window_.isAncestorOf(focused);
    control_ = usesKeyboard_ && isHere ? focused : nullptr;
    place();
}

/// How far it goes beyond the control, in whole pixels of the layout.
int FocusRing::reach() const
{
    return static_cast<int>(std::ceil(theme_.look.scaled(measure::focusDistance + measure::focusWidth)));
}

/// In the window; empty where the control has been scrolled away.
QRect FocusRing::visiblePart() const
{
    QRect visible{control_->mapTo(&window_, QPoint{}), control_->size()};
    for (const auto* around = control_->parentWidget(); around && around != &window_; around = around->parentWidget())
        if (const auto* area = qobject_cast<QAbstractScrollArea*>(around->parentWidget());
            area && area->viewport() == around)
            visible &= QRect{around->mapTo(&window_, QPoint{}), around->size()};
    return visible;
}

void FocusRing::place()
{
    const auto visible = control_ && control_->isVisibleTo(&window_) ? visiblePart() : QRect{};
    setVisible(!visible.isEmpty());
    if (visible.isEmpty())
        return;
    const int out = reach();
    setGeometry(visible.adjusted(-out, -out, out, out) & window_.rect());
    raise();
    update();
}

void FocusRing::paintEvent(QPaintEvent*)
{
    if (!control_)
        return;
    QPainter painter{this};
    // What the window's edge would cut off moves inside.
    const double out = reach();
    const auto control = QRectF{rect()}.adjusted(out, out, -out, -out);
    const double radius = theme_.look.scaled(control_->property(radiusProperty).toDouble());
    drawFocus(painter, control, radius, theme_.look.scale(), theme_.look.tokens());
}

} // namespace vespra
