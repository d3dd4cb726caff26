#include "App/DesignSystem/WindowGround.h"

#include <QPainter>

namespace vespra {

namespace {

    QPalette palette(const Tokens& tokens)
    {
        QPalette colors{tokens.surface2, tokens.window};
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            colors.setColor(role, tokens.text);
        colors.setColor(QPalette::Base, tokens.surface2);
        colors.setColor(QPalette::Highlight, tokens.accentFill);
        colors.setColor(QPalette::HighlightedText, tokens.onAccent);
        colors.setColor(QPalette::PlaceholderText, tokens.text3);
        colors.setColor(QPalette::ToolTipBase, tokens.surface);
        colors.setColor(QPalette::ToolTipText, tokens.text);
        return colors;
    }

} // namespace

WindowGround::WindowGround(const Theme& theme, QWidget& window)
    : theme_{theme}
    , window_{window}
    , loop_{theme.mainLoop, [&look = theme.look, &window] { window.setPalette(palette(look.tokens())); }}
{
    new FocusRing{theme, window};
}

void WindowGround::paint() const { QPainter{&window_}.fillRect(window_.rect(), theme_.look.tokens().window); }

} // namespace vespra
