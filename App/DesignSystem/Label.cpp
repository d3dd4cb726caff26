#include "App/DesignSystem/Label.h"

namespace vespra {

Label::Label(const Theme& theme, TextStyle style, Ink ink)
    : theme_{theme}
    , style_{style}
    , ink_{ink}
    , loop_{theme.mainLoop, [this] { apply(); }}
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void Label::show(const std::string& text)
{
    setText(qtText(text));
    setAccessibleName(qtText(text));
}

void Label::setInk(Ink ink)
{
    ink_ = ink;
    apply();
}

void Label::setTextStyle(TextStyle style)
{
    style_ = style;
    apply();
}

void Label::apply()
{
    setFont(theme_.look.font(style_));
    auto colors = palette();
    colors.setColor(QPalette::WindowText, theme_.look.tokens().*ink_);
    setPalette(colors);
}

} // namespace vespra
