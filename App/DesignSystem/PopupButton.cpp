#include "App/DesignSystem/PopupButton.h"

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/Icon.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>

namespace vespra {

namespace {

    constexpr double chevronSize = 12, chevronGap = 5;

} // namespace

PopupButton::PopupButton(const Theme& theme, const std::vector<std::string>& titles)
    : theme_{theme}
    , loop_{theme.mainLoop, [this] { apply(); }}
{
    for (const auto& title : titles)
        addItem(qtText(title));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    FocusRing::setRadius(*this, measure::smallButtonRadius);
    connect(
        this, &QComboBox::activated, this, [this](int index) { notify(onChoose, static_cast<std::size_t>(index)); });
}

void PopupButton::show(std::size_t index)
{
    setCurrentIndex(static_cast<int>(index));
    updateGeometry();
}

/// The list is the style's own: it takes colours and letters from here.
void PopupButton::apply()
{
    const auto& tokens = theme_.look.tokens();
    auto colors = palette();
    for (const auto role : {QPalette::Base, QPalette::Window, QPalette::Button})
        colors.setColor(role, tokens.surface);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        colors.setColor(role, tokens.text);
    colors.setColor(QPalette::Highlight, tokens.accentFill);
    colors.setColor(QPalette::HighlightedText, tokens.onAccent);
    setPalette(colors);
    view()->setPalette(colors);
    auto letters = theme_.look.font(TextStyle::note);
    letters.setWeight(QFont::Medium);
    setFont(letters);
    updateGeometry();
    update();
}

QSize PopupButton::sizeHint() const
{
    const auto& look = theme_.look;
    const int width = QFontMetrics{font()}.horizontalAdvance(currentText())
        + look.units(2 * measure::smallButtonPadding + chevronGap + chevronSize);
    return {width, look.units(measure::smallButtonHeight)};
}

void PopupButton::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    const ControlState state{.isEnabled = isEnabled(), .isHovered = underMouse(), .isPressed = view()->isVisible()};
    drawButton(painter, rect(), ButtonKind::plain, look.scaled(measure::smallButtonRadius), state, look.tokens());
    const auto ink = buttonText(ButtonKind::plain, state, look.tokens());
    const int padding = look.units(measure::smallButtonPadding), chevron = look.units(chevronSize);
    const auto inside = rect().adjusted(padding, 0, -padding, 0);
    const auto place = [&](const QRect& part) { return QStyle::visualRect(layoutDirection(), inside, part); };
    painter.setPen(ink);
    painter.drawText(place(inside.adjusted(0, 0, -chevron - look.units(chevronGap), 0)),
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
        currentText());
    const QRect corner{inside.right() - chevron, (height() - chevron) / 2, chevron, chevron};
    drawIcon(painter, "chevron.down", place(corner), ink);
}

void PopupButton::wheelEvent(QWheelEvent* event) { event->ignore(); }

} // namespace vespra
