#include "App/DesignSystem/TextBlock.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vespra {

namespace {

    constexpr double unlimited = 1 << 20;

    bool isDigit(QChar character) { return character >= u'0' && character <= u'9'; }

    double widestDigit(const QFontMetricsF& metrics)
    {
        double widest = 0;
        for (char16_t digit = u'0'; digit <= u'9'; ++digit)
            widest = std::max(widest, metrics.horizontalAdvance(QChar{digit}));
        return widest;
    }

    /// Half of what a digit lacks of its cell stands on either side of it.
    double cellPadding(const QFontMetricsF& metrics, double cell, QChar character)
    {
        return isDigit(character) ? (cell - metrics.horizontalAdvance(character)) / 2 : 0;
    }

    /// How many times as large a font has (nearly) a whole number of pixels.
    double magnification(double pixels)
    {
        constexpr double near = 0.04, most = 8;
        double times = 1;
        while (times < most && std::abs(pixels * times - std::round(pixels * times)) > near)
            times *= 2;
        return times;
    }

    QFont magnified(QFont font, double pixels, double times)
    {
        font.setPixelSize(static_cast<int>(std::lround(pixels * times)));
        return font;
    }

    /// Rounded to whole pixels as they may be, the metrics of a text would not put its lines in their middle.
    struct Vertical {
        double ascent, descent;
    };
    Vertical exactly(QFont font)
    {
        constexpr int large = 256;
        const double part = static_cast<double>(font.pixelSize()) / large;
        font.setPixelSize(large);
        const QFontMetricsF metrics{font};
        return {metrics.ascent() * part, metrics.descent() * part};
    }

    /// Large letters stand closer.
    double tracking(TextStyle style, double scale)
    {
        constexpr double ofClock = -0.6;
        return style == TextStyle::clock || style == TextStyle::longClock ? ofClock * scale : 0;
    }

} // namespace

TextBlock::TextBlock(const QString& text, const Look& look, TextStyle style)
    : magnified_{magnification(look.fontSize(style))}
    , lineHeight_{look.lineHeight(style) * magnified_}
    , layout_{text, magnified(look.font(style), look.fontSize(style), magnified_)}
{
    layout_.setCacheEnabled(true);
    layout_.setFormats(cells(tracking(style, look.scale()) * magnified_));
    layOut(unlimited, QTextOption::NoWrap);
}

/// The space after each character.
QVector<QTextLayout::FormatRange> TextBlock::cells(double tracking) const
{
    const QFontMetricsF metrics{layout_.font()};
    const double cell = widestDigit(metrics);
    const auto text = layout_.text();
    const auto space = [&](qsizetype index) {
        // Letters that join would be torn apart.
        const bool joins = text[index].joiningType() != QChar::Joining_None;
        const auto next = index + 1 < text.size() && !joins ? text[index + 1] : QChar{};
        return tracking + cellPadding(metrics, cell, text[index]) + cellPadding(metrics, cell, next);
    };
    QVector<QTextLayout::FormatRange> ranges;
    for (qsizetype index = 0; index < text.size(); ++index) {
        const double after = space(index);
        if (after == 0)
            continue;
        QTextCharFormat format;
        format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        format.setFontLetterSpacing(after);
        ranges.push_back({.start = static_cast<int>(index), .length = 1, .format = format});
    }
    return ranges;
}

void TextBlock::layOut(double width, QTextOption::WrapMode mode)
{
    QTextOption option;
    option.setWrapMode(mode);
    option.setUseDesignMetrics(true);
    layout_.setTextOption(option);
    const auto vertical = exactly(layout_.font());
    layout_.beginLayout();
    double top = 0;
    for (auto line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
        line.setLineWidth(width * magnified_);
        const double height = lineHeight(line);
        const double baseline = (height + vertical.ascent - vertical.descent) / 2;
        line.setPosition({0, top + baseline - line.ascent()});
        top += height;
    }
    layout_.endLayout();
}

double TextBlock::lead(const QTextLine& line) const
{
    const QFontMetricsF metrics{layout_.font()};
    const auto text = layout_.text();
    return text.isEmpty() ? 0 : cellPadding(metrics, widestDigit(metrics), text[line.textStart()]);
}

/// Letters of another font, for a script that this one does not have, may be higher.
double TextBlock::lineHeight(const QTextLine& line) const
{
    return lineHeight_ + std::max(0.0, line.height() - std::ceil(QFontMetricsF{layout_.font()}.height()));
}

QSizeF TextBlock::size() const
{
    QSizeF size{0, 0};
    for (int index = 0; index < layout_.lineCount(); ++index) {
        const auto line = layout_.lineAt(index);
        size.setWidth(std::max(size.width(), lead(line) + line.naturalTextWidth()));
        size.rheight() += lineHeight(line);
    }
    return size / magnified_;
}

void TextBlock::draw(QPainter& painter, const QRectF& area, Qt::Alignment alignment) const
{
    double top = area.top();
    if (!(alignment & Qt::AlignTop))
        top += (area.height() - size().height()) / (alignment & Qt::AlignBottom ? 1 : 2);
    painter.save();
    painter.translate(area.left(), top);
    painter.scale(1 / magnified_, 1 / magnified_);
    for (int index = 0; index < layout_.lineCount(); ++index) {
        const auto line = layout_.lineAt(index);
        const double space = area.width() * magnified_ - lead(line) - line.naturalTextWidth();
        const double left = alignment & Qt::AlignRight ? space : alignment & Qt::AlignHCenter ? space / 2 : 0;
        // Where the line was laid out it stands at its own side of the width that it was given.
        line.draw(&painter, {left + lead(line) - line.naturalTextRect().left(), 0});
    }
    painter.restore();
}

} // namespace vespra
