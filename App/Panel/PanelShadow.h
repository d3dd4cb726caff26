#pragma once

#include <QPixmap>

class QPainter;

namespace vespra {

/// The soft shadow under a panel. It is computed once for a colour and a density of the screen: in panels that are
/// larger than its corners the middle is stretched.
class PanelShadow {
public:
    /// Around `content`, as wide as the margin of the measures.
    void draw(QPainter& painter, const QRect& content, const QColor& color);

private:
    void compute(QSize size, const QColor& color, double pixelRatio);

    QSize size_;
    QColor color_;
    double pixelRatio_ = 0;
    QPixmap pixmap_;
};

} // namespace vespra
