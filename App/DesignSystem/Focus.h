#pragma once

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Theme.h"

#include <QPointer>

class QAbstractButton;

namespace vespra {

/// How a button is, for drawing it.
ControlState controlState(const QAbstractButton& button);

/// The ring around whatever has the focus in a window, shown only after the keyboard has moved the focus. It goes with
/// the control, also where that is scrolled, and stays within the window.
class FocusRing final : public QWidget {
public:
    /// `window` owns it.
    FocusRing(const Theme& theme, QWidget& window);

    /// How round the corners of a control are, in points; by default not at all.
    static void setRadius(QWidget& control, double radius);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* focused);
    void place();
    QRect visiblePart() const;
    int reach() const;

    const Theme theme_;
    QWidget& window_;
    QPointer<QWidget> control_;
    bool usesKeyboard_ = false;
    FollowsLook follows_;
};

} // namespace vespra
