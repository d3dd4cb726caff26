#include "App/DesignSystem/Drawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vespra {

namespace {

    constexpr double disabledOpacity = 0.5;
    constexpr int fullCircle = 360 * 16, twelveOClock = 90 * 16; // of QPainter

    QColor mixed(const QColor& color, const QColor& with, double part)
    {
        const auto channel = [&](float a, float b) { return a + (b - a) * static_cast<float>(part); };
        return QColor::fromRgbF(channel(color.redF(), with.redF()),
            channel(color.greenF(), with.greenF()),
            channel(color.blueF(), with.blueF()),
            channel(color.alphaF(), with.alphaF()));
    }

    QColor ground(ButtonKind kind, const Tokens& tokens)
    {
        switch (kind) {
        case ButtonKind::primary:
            return tokens.accentFill;
        case ButtonKind::plain:
        case ButtonKind::stop:
            return tokens.surface2;
        case ButtonKind::quiet:
            break;
        }
        auto none = tokens.text;
        none.setAlpha(0);
        return none;
    }

    /// Nearer to what stands on it the more it is touched.
    QColor touched(const QColor& color, ControlState state, const QColor& standsOnIt)
    {
        constexpr double hovered = 0.035, pressed = 0.07;
        if (!state.isEnabled)
            return color;
        return mixed(color, standsOnIt, state.isPressed ? pressed : state.isHovered ? hovered : 0);
    }

    void fill(QPainter& painter, const QRectF& area, double radius, const QColor& color)
    {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRoundedRect(area, radius, radius);
    }

    void outline(QPainter& painter, const QRectF& area, double radius, const QColor& color, double width)
    {
        painter.setPen(QPen{color, width});
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(area, radius, radius);
    }

    QPainterPath rounded(const QRectF& area, double radius)
    {
        QPainterPath path;
        path.addRoundedRect(area, radius, radius);
        return path;
    }

    /// A shadow `blur` wide: thin layers, each a little larger than the one on it.
    void shade(QPainter& painter, const QRectF& area, double radius, double blur, double opacity)
    {
        constexpr int layers = 4;
        for (int layer = 0; layer < layers; ++layer) {
            const double out = blur * ((layer + 0.5) / layers - 0.5);
            fill(painter,
                area.adjusted(-out, -out, out, out),
                radius + out,
                QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity / layers)));
        }
    }

    class Saved {
    public:
        explicit Saved(QPainter& painter, ControlState state = {})
            : painter_{painter}
        {
            painter_.save();
            painter_.setRenderHint(QPainter::Antialiasing);
            if (!state.isEnabled)
                painter_.setOpacity(painter_.opacity() * disabledOpacity);
        }
        ~Saved() { painter_.restore(); }
        Saved(const Saved&) = delete;
        Saved& operator=(const Saved&) = delete;

    private:
        QPainter& painter_;
    };

} // namespace

QColor buttonGround(ButtonKind kind, ControlState state, const Tokens& tokens)
{
    return touched(ground(kind, tokens), state, kind == ButtonKind::primary ? tokens.onAccent : tokens.text);
}

QColor switchGround(double knob, ControlState state, const Tokens& tokens)
{
    return touched(mixed(tokens.off, tokens.ring, knob), state, tokens.text);
}

void drawButton(
    QPainter& painter, const QRectF& area, ButtonKind kind, double radius, ControlState state, const Tokens& tokens)
{
    const Saved saved{painter, state};
    fill(painter, area, radius, buttonGround(kind, state, tokens));
    if (kind != ButtonKind::quiet && tokens.control.alpha() > 0) {
        constexpr double half = 0.5;
        outline(painter, area.adjusted(half, half, -half, -half), radius - half, tokens.control, 1);
    }
}

QColor buttonText(ButtonKind kind, ControlState state, const Tokens& tokens)
{
    auto color = kind == ButtonKind::primary ? tokens.onAccent : kind == ButtonKind::stop ? tokens.bad : tokens.text;
    if (!state.isEnabled)
        color.setAlphaF(disabledOpacity);
    return color;
}

void drawSwitch(QPainter& painter, const QRectF& area, double knob, ControlState state, const Tokens& tokens)
{
    const Saved saved{painter, state};
    const double point = area.height() / measure::switchHeight, inset = measure::switchInset * point;
    const double size = area.height() - 2 * inset;
    fill(painter, area, area.height() / 2, switchGround(knob, state, tokens));
    const QRectF place{area.left() + inset + knob * (area.width() - 2 * inset - size), area.top() + inset, size, size};
    constexpr double drop = 0.5, blur = 2, darkness = 0.4;
    painter.save();
    painter.setClipPath(rounded(area, area.height() / 2));
    shade(painter, place.translated(0, drop * point), size / 2, blur * point, darkness);
    painter.restore();
    fill(painter, place, size / 2, mixed(tokens.knob, tokens.knobOn, knob));
}

void drawSegments(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    fill(painter, area, (measure::segmentRadius + measure::segmentInset) * scale, tokens.surface2);
}

void drawChosenSegment(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    const double radius = measure::segmentRadius * scale;
    constexpr double drop = 0.5, blur = 1.5, darkness = 0.2;
    shade(painter, area.translated(0, drop * scale), radius, blur * scale, darkness);
    const double half = tokens.hairline * scale / 2;
    outline(painter, area.adjusted(-half, -half, half, half), radius + half, tokens.line, 2 * half);
    fill(painter, area, radius, tokens.raised);
}

void drawRing(
    QPainter& painter, const QRectF& area, std::optional<double> remaining, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    const double stroke = measure::ringStroke * scale, radius = measure::ringRadius * scale;
    const QRectF circle{area.center() - QPointF{radius, radius}, QSizeF{2 * radius, 2 * radius}};
    painter.setBrush(Qt::NoBrush);
    if (remaining) {
        painter.setPen(QPen{tokens.track, stroke});
        painter.drawEllipse(circle);
        painter.setPen(QPen{tokens.ring, stroke, Qt::SolidLine, Qt::RoundCap});
        if (const int span = static_cast<int>(*remaining * fullCircle); span > 0)
            painter.drawArc(circle, twelveOClock, -span);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(tokens.ring);
    for (int dot = 0; dot < measure::ringDots; ++dot) {
        const double angle = 2 * std::numbers::pi * dot / measure::ringDots;
        const QPointF middle = circle.center() + QPointF{std::sin(angle), -std::cos(angle)} * radius;
        painter.drawEllipse(middle, stroke / 2, stroke / 2);
    }
}

void drawHairline(QPainter& painter, QPointF from, double length, double scale, const Tokens& tokens)
{
    const double pixels = painter.deviceTransform().m11();
    const double width = std::max(1.0, std::floor(tokens.hairline * scale * pixels)) / pixels;
    painter.fillRect(QRectF{from.x(), std::round(from.y() * pixels) / pixels, length, width}, tokens.line);
}

void drawCard(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    const double radius = measure::cardRadius * scale, half = tokens.hairline * scale / 2;
    fill(painter, area, radius, tokens.surface);
    outline(painter, area.adjusted(half, half, -half, -half), radius - half, tokens.line, 2 * half);
}

void drawFocus(QPainter& painter, const QRectF& area, double radius, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    const double out = (measure::focusDistance + measure::focusWidth / 2) * scale;
    outline(painter, area.adjusted(-out, -out, out, out), radius + out, tokens.focus, measure::focusWidth * scale);
}

} // namespace vespra
