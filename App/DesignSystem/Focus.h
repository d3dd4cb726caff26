#pragma once

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Theme.h"

#include <QFocusFrame>

class QAbstractButton;

namespace vespra {

/// How a button is, for drawing it.
ControlState controlState(const QAbstractButton& button);

/// The ring around whatever has the focus in a window, shown only after the keyboard has moved the focus.
class FocusRing final : public QFocusFrame {
public:
    /// `window` owns it.
    FocusRing(const Theme& theme, QWidget& window);

    /// How round the ring of a control is; by default a little.
    static void setRadius(QWidget& control, double radius);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* focused);

    const Theme theme_;
    QWidget& window_;
    bool usesKeyboard_ = false;
};

} // namespace vespra
