#include "App/Settings/TabBar.h"

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/Icon.h"
#include "App/Settings/SettingsPages.h"
#include "App/Wording/Localized.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace vespra {

namespace {

    constexpr double tabWidth = 84, tabHeight = 52, tabGap = 4, tabPadding = 8;
    constexpr double iconWidth = 19, iconTop = 7, textTop = 30, textHeight = 16;

    SettingsTab tabOf(int index) { return rawValues<SettingsTab>[static_cast<std::size_t>(index)].first; }

} // namespace

TabBar::TabBar(const Theme& theme)
    : theme_{theme}
    , loop_{theme.mainLoop, [this] {
                setFont(theme_.look.font(TextStyle::caption));
                theme_.look.tokens();
                update();
            }}
{
    for (const auto& [tab, name] : rawValues<SettingsTab>)
        addTab(qtText(title(tab)));
    setAccessibleName(qtText(localized("Pages")));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setMouseTracking(true);
    FocusRing::setRadius(*this, measure::buttonRadius);
    connect(this, &QTabBar::currentChanged, this, [this](int index) { notify(onChoose, tabOf(index)); });
}

void TabBar::show(SettingsTab tab)
{
    const QSignalBlocker silence{this};
    for (int index = 0; index < count(); ++index)
        if (tabOf(index) == tab)
            setCurrentIndex(index);
}

QSize TabBar::tabSizeHint(int index) const
{
    const auto& look = theme_.look;
    const int text = QFontMetrics{font()}.horizontalAdvance(tabText(index)) + look.units(2 * tabPadding);
    return {std::max(look.units(tabWidth), text) + look.units(tabGap), look.units(tabHeight)};
}

void TabBar::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    for (int index = 0; index < count(); ++index)
        drawTab(painter, index);
}

void TabBar::drawTab(QPainter& painter, int index) const
{
    const auto& look = theme_.look;
    const auto& tokens = look.tokens();
    const auto area = QRectF{tabRect(index)}.adjusted(look.scaled(tabGap / 2), 0, -look.scaled(tabGap / 2), 0);
    const bool isChosen = index == currentIndex();
    const bool isHovered = area.contains(mapFromGlobal(QCursor::pos())) && underMouse();
    drawButton(painter,
        area,
        isChosen ? ButtonKind::plain : ButtonKind::quiet,
        look.scaled(measure::buttonRadius),
        {.isHovered = isHovered},
        tokens);
    const auto ink = isChosen ? tokens.accent : tokens.text2;
    const double size = look.scaled(iconWidth);
    drawIcon(painter, icon(tabOf(index)), {area.center().x() - size / 2, look.scaled(iconTop), size, size}, ink);
    painter.setPen(ink);
    painter.setFont(font());
    const QRectF text{area.left(), look.scaled(textTop), area.width(), look.scaled(textHeight)};
    painter.drawText(text, Qt::AlignCenter | Qt::TextSingleLine, tabText(index));
}

void TabBar::wheelEvent(QWheelEvent* event) { event->ignore(); }

void TabBar::mouseMoveEvent(QMouseEvent* event)
{
    QTabBar::mouseMoveEvent(event);
    update();
}

void TabBar::leaveEvent(QEvent* event)
{
    QTabBar::leaveEvent(event);
    update();
}

} // namespace vespra
