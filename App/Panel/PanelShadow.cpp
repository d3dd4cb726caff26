#include "App/Panel/PanelShadow.h"

#include "App/DesignSystem/Tokens.h"

#include <qdrawutil.h>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace vespra {

namespace {

    // All in points.
    constexpr int margin = static_cast<int>(measure::shadowMargin);
    constexpr double drop = 12, blur = 34, deviation = blur / 2;
    /// Up to here from the edge of the window nothing is seen of the shadow: it would end in a line.
    constexpr double fade = 16;
    /// Further inside the shadow is the same everywhere.
    constexpr int slice = margin + static_cast<int>(drop + 3 * deviation);

    /// The part of a normal distribution below `value`.
    double below(double value) { return std::erfc(-value / deviation / std::numbers::sqrt2) / 2; }

    /// 0 at the edge of the window to 1.
    double ramp(double distance)
    {
        const double part = std::clamp(distance / fade, 0.0, 1.0);
        return part * part * (3 - 2 * part);
    }

    /// The shadow across a panel, 0 to 1 for each of `count` pixels of `points`. The shadow of a rectangle is the
    /// product of two of these; how round its corners are is lost in the blur.
    std::vector<float> profile(int count, double points, double shift)
    {
        std::vector<float> values;
        values.reserve(static_cast<std::size_t>(count));
        for (int pixel = 0; pixel < count; ++pixel) {
            const double place = (pixel + 0.5) * points / count;
            const double inside = below(place - margin - shift) - below(place - (points - margin) - shift);
            values.push_back(static_cast<float>(inside * ramp(place) * ramp(points - place)));
        }
        return values;
    }

    constexpr QMargins around(int width, int height) { return {width, height, width, height}; }

    int pixels(int points, double pixelRatio) { return static_cast<int>(std::ceil(points * pixelRatio)); }

} // namespace

void PanelShadow::compute(QSize size, const QColor& color, double pixelRatio)
{
    const auto across = profile(pixels(size.width(), pixelRatio), size.width(), 0);
    const auto down = profile(pixels(size.height(), pixelRatio), size.height(), drop);
    QImage image{static_cast<int>(across.size()), static_cast<int>(down.size()), QImage::Format_ARGB32_Premultiplied};
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float strength = down[static_cast<std::size_t>(y)] * static_cast<float>(color.alpha());
        for (const float part : across)
            *line++ = qPremultiply(
                qRgba(color.red(), color.green(), color.blue(), static_cast<int>(std::lround(part * strength))));
    }
    pixmap_ = QPixmap::fromImage(std::move(image));
    size_ = size;
    color_ = color;
    pixelRatio_ = pixelRatio;
}

void PanelShadow::draw(QPainter& painter, const QRect& content, const QColor& color)
{
    const auto frame = content + around(margin, margin);
    const auto size = frame.size().boundedTo({2 * slice + 1, 2 * slice + 1});
    const double pixelRatio = painter.device()->devicePixelRatioF();
    if (size != size_ || color != color_ || pixelRatio != pixelRatio_)
        compute(size, color, pixelRatio);
    const int width = (size.width() - 1) / 2, height = (size.height() - 1) / 2;
    qDrawBorderPixmap(&painter,
        frame,
        around(width, height),
        pixmap_,
        pixmap_.rect(),
        around(static_cast<int>(width * pixelRatio), static_cast<int>(height * pixelRatio)));
}

} // namespace vespra
