#pragma once

#include <QImage>
#include <QWidget>

namespace vespra {

/// What `widget` and all in it look like on a display with `scale` pixels to the point, transparent where nothing is
/// drawn. The widget is shown.
QImage picture(QWidget& widget, double scale);

/// Writes `image` as PNG, the same bytes for the same image. False if the file cannot be written in full.
bool writePicture(const QImage& image, const QString& path);

} // namespace vespra
