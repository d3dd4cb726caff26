#include "App/DesignSystem/Drawing.h"

#include <QPainter>

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
        auto none = tokens.surface2;
        none.setAlpha(0);
        return none;
    }

    /// Nearer to the text the more it is touched.
    QColor touched(const QColor& color, ControlState state, const Tokens& tokens)
    {
        constexpr double hovered = 0.06, pressed = 0.14;
        if (!state.isEnabled)
            return color;
        return mixed(color, tokens.text, state.isPressed ? pressed : state.isHovered ? hovered : 0);
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

void drawButton(
    QPainter& painter, const QRectF& area, ButtonKind kind, double radius, ControlState state, const Tokens& tokens)
{
    const Saved saved{painter, state};
    fill(painter, area, radius, touched(ground(kind, tokens), state, tokens));
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
    const double inset = area.height() * measure::switchInset / measure::switchHeight;
    const double size = area.height() - 2 * inset;
    fill(painter, area, area.height() / 2, touched(mixed(tokens.off, tokens.ring, knob), state, tokens));
    const QRectF place{area.left() + inset + knob * (area.width() - 2 * inset - size), area.top() + inset, size, size};
    fill(painter, place.translated(0, inset / 4), size / 2, QColor{0, 0, 0, 0x40});
    fill(painter, place, size / 2, tokens.knob);
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
    fill(painter, area.translated(0, scale), radius, QColor{0, 0, 0, 0x1C});
    fill(painter, area, radius, tokens.raised);
    outline(painter, area, radius, tokens.line, measure::hairline * scale);
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

void drawCard(QPainter& painter, const QRectF& area, double scale, const Tokens& tokens)
{
    const Saved saved{painter};
    const double radius = measure::cardRadius * scale;
    fill(painter, area, radius, tokens.surface);
    const double half = measure::hairline * scale / 2;
    outline(painter, area.adjusted(half, half, -half, -half), radius, tokens.line, measure::hairline * scale);
}

void drawFocus(QPainter& painter, const QRectF& area, double radius, const Tokens& tokens)
{
    const Saved saved{painter};
    constexpr double out = measure::focusDistance + measure::focusWidth / 2;
    outline(painter, area.adjusted(-out, -out, out, out), radius + out, tokens.focus, measure::focusWidth);
}

} // namespace vespra
