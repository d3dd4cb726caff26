#pragma once

#include "App/DesignSystem/Look.h"

#include <QTextLayout>

namespace vespra {

/// A text in a style of the look. All digits are as wide as the widest, so that nothing moves while a number counts.
class TextBlock {
public:
    TextBlock(const QString& text, const Look& look, TextStyle style);

    /// Breaks lines between words, and within a word only where it is wider than `width`. In one line by default.
    void wrap(double width) { layOut(width, QTextOption::WrapAtWordBoundaryOrAnywhere); }
    /// Breaks lines between all words.
    void wrapEverywhere() { layOut(0, QTextOption::WordWrap); }

    /// Of the lines there are.
    QSizeF size() const;
    /// Draws it in the painter's pen, in the middle of `area` from top to bottom unless `alignment` says otherwise.
    void draw(QPainter& painter, const QRectF& area, Qt::Alignment alignment) const;

private:
    void layOut(double width, QTextOption::WrapMode mode);
    QVector<QTextLayout::FormatRange> cells(double tracking) const;
    double lead(const QTextLine& line) const;
    double lineHeight(const QTextLine& line) const;

    /// Fonts come in whole pixels only: others are laid out this many times as large, and drawn that much smaller.
    double magnified_;
    double lineHeight_;
    QTextLayout layout_;
};

} // namespace vespra
