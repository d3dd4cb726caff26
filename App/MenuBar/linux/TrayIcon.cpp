#include "App/MenuBar/linux/TrayIcon.h"

#include "App/DesignSystem/Tokens.h"
#include "App/MenuBar/StatusItemDrawing.h"
#include "App/System/linux/Desktop.h"

#include <QPainter>
#include <QtEndian>

namespace vespra {

namespace {

    /// Of common panels, at one and two pixels a point.
    constexpr int sizes[] = {22, 24, 32, 44, 48};
    /// What the dot stands out of the mark on its left, in points; the other side gets as much.
    constexpr double overhang = statusImage::dotSize / 2 - statusImage::dotCenter.x();

    /// No desktop says how dark its panel is. GNOME's bar is black and Xfce's panel dark as they come, whatever windows
    /// look like; the others' panels mostly go with the windows. The halo helps where this is wrong.
    bool panelIsDark(const Appearance& appearance)
    {
        const bool isClassic = desktop::isCurrent("GNOME-Classic");
        const bool isAlwaysDark
            = (desktop::isCurrent("GNOME") && !isClassic) || desktop::isCurrent("Unity") || desktop::isCurrent("XFCE");
        return isAlwaysDark || appearance.isDark;
    }

    QColor faint(QColor color)
    {
        color.setAlphaF(0.4F);
        return color;
    }

    /// A pixel's breadth around the mark.
    void drawHalo(QPainter& painter, double pixel, const QColor& color)
    {
        for (const QPointF offset : {QPointF{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
            painter.save();
            painter.translate(offset * pixel);
            drawStatusMark(painter, false, color);
            painter.restore();
        }
    }

    TrayImage onBus(const QImage& image)
    {
        const auto drawn = image.convertToFormat(QImage::Format_ARGB32);
        TrayImage result{drawn.width(), drawn.height(), QByteArray{drawn.sizeInBytes(), Qt::Uninitialized}};
        qToBigEndian<quint32>(drawn.constBits(), drawn.sizeInBytes() / 4, result.pixels.data());
        return result;
    }

} // namespace

TrayColors trayColors(const Appearance& appearance)
{
    auto panels = appearance;
    panels.isDark = panelIsDark(appearance);
    const auto& used = tokens(panels);
    panels.isDark = !panels.isDark;
    return {.mark = used.text, .halo = faint(tokens(panels).text), .dot = used.accentFill};
}

QImage trayIcon(int size, bool isActive, const TrayColors& colors)
{
    const double scale = size / (statusImage::width + 2 * overhang);
    QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    QPainter painter{&image};
    painter.translate(size / 2.0, size / 2.0);
    painter.scale(scale, scale);
    painter.translate(-statusImage::width / 2, -statusImage::height / 2);
    drawHalo(painter, 1 / scale, colors.halo);
    drawStatusMark(painter, isActive, colors.mark);
    if (isActive) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.dot);
        painter.drawEllipse(statusImage::dotCenter, statusImage::dotSize / 2, statusImage::dotSize / 2);
    }
    return image;
}

TrayImages trayImages(bool isActive, const TrayColors& colors)
{
    TrayImages images;
    for (const int size : sizes)
        images.push_back(onBus(trayIcon(size, isActive, colors)));
    return images;
}

} // namespace vespra
