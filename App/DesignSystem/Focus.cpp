#include "App/DesignSystem/Focus.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include <array>

namespace vespra {

namespace {

    constexpr const char* radiusProperty = "vespra.focusRadius";

    bool movesFocus(const QEvent& event)
    {
        constexpr std::array keys{Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down};
        return event.type() == QEvent::KeyPress
            && std::ranges::find(keys, static_cast<const QKeyEvent&>(event).key()) != keys.end();
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
    : QFocusFrame{&window}
    , theme_{theme}
    , window_{window}
{
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
    return QFocusFrame::eventFilter(watched, event);
}

void FocusRing::follow(QWidget* focused)
{
    const bool isHere = focused && focused->window() == window_.window() && focused != window_.window();
    setWidget(usesKeyboard_ && isHere ? focused : nullptr);
}

void FocusRing::paintEvent(QPaintEvent*)
{
    if (!widget())
        return;
    QPainter painter{this};
    const QRectF place{widget()->mapTo(widget()->window(), QPoint{}) - mapTo(window(), QPoint{}), widget()->size()};
    drawFocus(painter, place, widget()->property(radiusProperty).toDouble(), theme_.look.tokens());
}

} // namespace vespra
