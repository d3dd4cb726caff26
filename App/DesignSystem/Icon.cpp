#include "App/DesignSystem/Icon.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <map>
#include <memory>

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

    void draw(QPainter& painter, const QString& path, const QRectF& area, const QColor& color)
    {
        auto& image = renderer(path, color);
        if (!image.isValid())
            return;
        painter.save();
        painter.setOpacity(painter.opacity() * color.alphaF());
        painter.setRenderHint(QPainter::Antialiasing);
        image.render(&painter, area);
        painter.restore();
    }

} // namespace

void drawIcon(QPainter& painter, std::string_view name, const QRectF& area, const QColor& color)
{
    const auto file = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    draw(painter, QStringLiteral(":/icons/%1.svg").arg(file), area, color);
}

void drawMark(QPainter& painter, const QRectF& area, const QColor& color)
{
    QRectF place{0, 0, area.width(), area.width() / markAspect};
    place.moveCenter(area.center());
    draw(painter, QStringLiteral(":/artwork/mark.svg"), place, color);
}

} // namespace vespra
