#include "App/MenuBar/StatusItemDrawing.h"

#include <QColor>
#include <QPainter>

namespace vespra {

std::optional<QPointF> statusDotOrigin(const QRectF& image, bool isFlipped, double buttonHeight)
{
    if (image.width() <= 0)
        return {};
    const QPointF corner{image.left(), isFlipped ? image.top() : buttonHeight - image.bottom()};
    constexpr QPointF radius{statusImage::dotSize / 2, statusImage::dotSize / 2};
    return corner + statusImage::dotCenter - radius;
}

void drawStatusMark(QPainter& painter, bool isActive, const QColor& color)
{
    drawMark(painter, {0, 0, statusImage::width, statusImage::height}, color);
    if (!isActive)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawEllipse(statusImage::notch);
    painter.restore();
}

} // namespace vespra
