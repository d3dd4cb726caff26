#include "App/DesignSystem/TextBlock.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
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

    struct Vertical {
        double ascent, descent;
    };

    /// At the size of texts the metrics are rounded to whole pixels, and lines would not stand in their middle.
    Vertical exactly(QFont font)
    {
        constexpr int large = 256;
        const double size = font.pointSizeF() * QFontMetricsF{font}.fontDpi() / 72;
        font.setPixelSize(large);
        const QFontMetricsF metrics{font};
        return {metrics.ascent() * size / large, metrics.descent() * size / large};
    }

    /// Large letters stand closer.
    double tracking(TextStyle style, double scale)
    {
        constexpr double ofClock = -0.6;
        return style == TextStyle::clock || style == TextStyle::longClock ? ofClock * scale : 0;
    }

} // namespace

TextBlock::TextBlock(const QString& text, const Look& look, TextStyle style)
    : layout_{text, look.font(style)}
    , lineHeight_{look.lineHeight(style)}
{
    layout_.setCacheEnabled(true);
    layout_.setFormats(cells(layout_.font(), tracking(style, look.scale())));
    layOut(unlimited, QTextOption::NoWrap);
}

/// The space after each character.
QVector<QTextLayout::FormatRange> TextBlock::cells(const QFont& font, double tracking) const
{
    const QFontMetricsF metrics{font};
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
        line.setLineWidth(width);
        const double height = std::max(lineHeight_, line.height());
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

QSizeF TextBlock::size() const
{
    QSizeF size{0, 0};
    for (int index = 0; index < layout_.lineCount(); ++index) {
        const auto line = layout_.lineAt(index);
        size.setWidth(std::max(size.width(), lead(line) + line.naturalTextWidth()));
        size.rheight() += std::max(lineHeight_, line.height());
    }
    return size;
}

void TextBlock::draw(QPainter& painter, const QRectF& area, Qt::Alignment alignment) const
{
    double top = area.top();
    if (!(alignment & Qt::AlignTop))
        top += (area.height() - size().height()) / (alignment & Qt::AlignBottom ? 1 : 2);
    for (int index = 0; index < layout_.lineCount(); ++index) {
        const auto line = layout_.lineAt(index);
        const double space = area.width() - lead(line) - line.naturalTextWidth();
        const double left = alignment & Qt::AlignRight ? space : alignment & Qt::AlignHCenter ? space / 2 : 0;
        // Where the line was laid out it stands at its own side of the width that it was given.
        const double origin = line.naturalTextRect().left();
        line.draw(&painter, {area.left() + left + lead(line) - origin, top});
    }
}

} // namespace vespra
