#include "App/Render/Picture.h"

#include <QImageWriter>

namespace vespra {

QImage picture(QWidget& widget, double scale)
{
    QImage image{(QSizeF{widget.size()} * scale).toSize(), QImage::Format_ARGB32_Premultiplied};
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}

bool writePicture(const QImage& image, const QString& path)
{
    auto bare = image.convertToFormat(QImage::Format_ARGB32);
    bare.setDevicePixelRatio(1);
    QImageWriter writer{path, "png"};
    return writer.write(bare);
}

} // namespace vespra
