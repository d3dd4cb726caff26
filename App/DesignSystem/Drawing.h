#pragma once

#include "App/DesignSystem/Tokens.h"

#include <QRectF>

#include <optional>

class QPainter;

namespace vespra {

/// How a control is at the moment.
struct ControlState {
    bool isEnabled = true;
    bool isHovered = false;
    bool isPressed = false;
};

enum class ButtonKind { primary, plain, stop, quiet };

// Each fills `area`; distances inside it grow with `scale`.

/// The ground of a button; its text stands in `buttonText`.
void drawButton(
    QPainter& painter, const QRectF& area, ButtonKind kind, double radius, ControlState state, const Tokens& tokens);
QColor buttonText(ButtonKind kind, ControlState state, const Tokens& tokens);

/// A switch; `knob` is 0 (off) to 1 (on).
void drawSwitch(QPainter& painter, const QRectF& area, double knob, ControlState state, const Tokens& tokens);

/// The ground of a row of segments, and the one that is chosen.
void drawSegments(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens);
void drawChosenSegment(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens);

/// The time left, 0 to 1, clockwise from twelve o'clock; absent: dots all around.
void drawRing(
    QPainter& painter, const QRectF& area, std::optional<double> remaining, double scale, const Tokens& tokens);

/// A line of one pixel or half a point, whichever is wider, that lies on the pixels below `from`.
void drawHairline(QPainter& painter, QPointF from, double length, double scale, const Tokens& tokens);

/// A surface that holds rows.
void drawCard(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens);

/// The ring of the focus around a control that is `area`, with corners of `radius`.
void drawFocus(QPainter& painter, const QRectF& area, double radius, double scale, const Tokens& tokens);

/// What a button's ground becomes as it is touched: of a `ButtonKind`, and of the switch.
QColor buttonGround(ButtonKind kind, ControlState state, const Tokens& tokens);
QColor switchGround(double knob, ControlState state, const Tokens& tokens);

} // namespace vespra
