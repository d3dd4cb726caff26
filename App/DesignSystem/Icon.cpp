#include "App/DesignSystem/Icon.h"

#include "App/DesignSystem/SystemSymbol.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace vespra {

namespace {

    QByteArray drawing(const QString& path, const QColor& color)
    {
        QFile file{path};
        if (!file.open(QIODevice::ReadOnly))
            return {};
        // Alpha is the painter's: SVG would take it apart into an attribute of its own.
        return file.readAll().replace("currentColor", color.name().toLatin1());
    }

    /// Kept, since every icon is drawn many times in few colours.
    QSvgRenderer& renderer(const QString& path, const QColor& color)
    {
        static std::map<std::pair<QString, QRgb>, std::unique_ptr<QSvgRenderer>> kept;
        auto& found = kept[{path, color.rgb()}];
        if (!found)
            found = std::make_unique<QSvgRenderer>(drawing(path, color));
        return *found;
    }

    /// The system's symbol in one colour; null where there is none. Kept, as the drawings are.
    const QImage& symbol(std::string_view name, int pixels, const QColor& color)
    {
        static std::map<std::tuple<std::string, int, QRgb>, QImage> kept;
        const auto [found, isNew] = kept.try_emplace({std::string{name}, pixels, color.rgb()});
        if (isNew)
            found->second = systemSymbol(name, pixels);
        if (isNew && !found->second.isNull()) {
            QPainter painter{&found->second};
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(found->second.rect(), QColor{color.rgb()});
        }
        return found->second;
    }

    void draw(QPainter& painter, const QString& path, const QRectF& area, const QColor& color)
    {
        auto& image = renderer(path, color);
        if (!image.isValid())
            return qWarning("there is no drawing %s", qPrintable(path));
        painter.save();
        painter.setOpacity(painter.opacity() * color.alphaF());
        painter.setRenderHint(QPainter::Antialiasing);
        image.render(&painter, area);
        painter.restore();
    }

} // namespace

void drawIcon(QPainter& painter, std::string_view name, const QRectF& area, const QColor& color)
{
    const int pixels = static_cast<int>(std::lround(area.width() * painter.deviceTransform().m11()));
    if (const auto& image = symbol(name, pixels, color); !image.isNull()) {
        painter.save();
        painter.setOpacity(painter.opacity() * color.alphaF());
        painter.drawImage(area, image);
        return painter.restore();
    }
    const auto file = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    draw(painter, QStringLiteral(":/icons/%1.svg").arg(file), area, color);
}

void drawMark(QPainter& painter, const QRectF& area, const QColor& color)
{
    QRectF place{0, 0, area.width(), area.width() / markAspect};
    place.moveCenter(area.center());
    draw(painter, QStringLiteral(":/artwork/mark.svg"), place, color);
}

void drawEmblem(QPainter& painter, const QRectF& area)
{
    constexpr QColor top{0x4B, 0x3F, 0x7D}, bottom{0x25, 0x1F, 0x3D}, light{0xFF, 0xC6, 0x5C};
    constexpr double radius = 18.0 / 76, markWidth = 52.0 / 76; // of the width
    const double size = area.width();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky{area.left() + size * 0.33, area.top(), area.left() + size * 0.67, area.bottom()};
    sky.setColorAt(0, top);
    sky.setColorAt(1, bottom);
    painter.setPen(Qt::NoPen);
    painter.setBrush(sky);
    painter.drawRoundedRect(area, radius * size, radius * size);
    QRectF place{0, 0, markWidth * size, size};
    place.moveCenter(area.center());
    drawMark(painter, place, light);
    painter.restore();
}

} // namespace vespra
