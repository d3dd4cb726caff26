#include "App/DesignSystem/Label.h"

#include "App/DesignSystem/TextBlock.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vespra {

namespace {

    /// Longer words are broken rather than that a window grows, in points.
    constexpr double longestUnbroken = 110;

    QSize roundedUp(QSizeF size)
    {
        return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::lround(size.height()))};
    }

} // namespace

Label::Label(const Theme& theme, TextStyle style, Ink ink)
    : theme_{theme}
    , style_{style}
    , ink_{ink}
    , loop_{theme.mainLoop, [this] { apply(); }}
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void Label::show(const std::string& text) { show(text, text); }

void Label::show(const std::string& text, const std::string& spoken)
{
    // What begins with a slash is one word: "/hooks" is not to be torn in two.
    const auto shown = qtText(text).replace(QStringLiteral(" /"), QStringLiteral(" /\u2060"));
    if (shown != this->text())
        setText(shown);
    setAccessibleName(qtText(spoken));
}

void Label::setInk(Ink ink)
{
    if (std::exchange(ink_, ink) != ink)
        apply();
}

void Label::setTextStyle(TextStyle style)
{
    if (std::exchange(style_, style) != style)
        apply();
}

/// Whoever looks at the label from outside finds what it is drawn with.
void Label::apply()
{
    setFont(theme_.look.font(style_));
    auto colors = palette();
    colors.setColor(QPalette::WindowText, theme_.look.tokens().*ink_);
    setPalette(colors);
    updateGeometry();
    update();
}

QSize Label::sizeHint() const
{
    return roundedUp(TextBlock{text(), theme_.look, style_}.size()).grownBy(contentsMargins());
}

QSize Label::minimumSizeHint() const
{
    TextBlock block{text(), theme_.look, style_};
    const auto oneLine = block.size();
    if (!wordWrap())
        return roundedUp(oneLine).grownBy(contentsMargins());
    block.wrapEverywhere();
    const double width = std::min(block.size().width(), theme_.look.scaled(longestUnbroken));
    return roundedUp({width, oneLine.height()}).grownBy(contentsMargins());
}

int Label::heightForWidth(int width) const
{
    const auto margins = contentsMargins();
    TextBlock block{text(), theme_.look, style_};
    if (wordWrap())
        block.wrap(width - margins.left() - margins.right());
    return roundedUp(block.size()).height() + margins.top() + margins.bottom();
}

void Label::paintEvent(QPaintEvent*)
{
    const QRectF area{contentsRect()};
    TextBlock block{text(), theme_.look, style_};
    if (wordWrap())
        block.wrap(area.width());
    QPainter painter{this};
    painter.setPen(theme_.look.tokens().*ink_);
    block.draw(painter, area, QStyle::visualAlignment(layoutDirection(), alignment()));
}

} // namespace vespra
