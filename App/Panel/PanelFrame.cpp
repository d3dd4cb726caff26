#include "App/Panel/PanelFrame.h"

#include "App/DesignSystem/Focus.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace vespra {

PanelFrame::PanelFrame(const Theme& theme, std::function<PanelInterior()> makeContent)
    : theme_{theme}
    , makeContent_{std::move(makeContent)}
    , follows_{theme, *this}
{
    setAttribute(Qt::WA_TranslucentBackground);
    new FocusRing{theme_, *this};
}

void PanelFrame::setGround(Ground ground)
{
    ground_ = ground;
    update();
}

void PanelFrame::build()
{
    if (content_.widget)
        return;
    content_ = makeContent_();
    content_.widget->setParent(this);
    content_.widget->setGeometry(contentRect());
    content_.widget->show();
}

void PanelFrame::takeDown()
{
    if (auto* widget = std::exchange(content_, {}).widget) {
        widget->hide();
        widget->deleteLater();
    }
}

int PanelFrame::margin() const { return ground_ == Ground::floating ? static_cast<int>(measure::shadowMargin) : 0; }

QSize PanelFrame::wantedSize() const
{
    const int width = theme_.look.units(measure::panelWidth);
    if (!content_.widget)
        return {width, 0};
    const auto& widget = *content_.widget;
    return {width, widget.hasHeightForWidth() ? widget.heightForWidth(width) : widget.sizeHint().height()};
}

QSize PanelFrame::contentSize(int maximumHeight)
{
    build();
    if (content_.setMaximumHeight)
        content_.setMaximumHeight(maximumHeight);
    content_.widget->ensurePolished();
    wanted_ = wantedSize();
    return wanted_.boundedTo({QWIDGETSIZE_MAX, maximumHeight});
}

QRect PanelFrame::frameAround(const QRect& content) const
{
    return content.adjusted(-margin(), -margin(), margin(), margin());
}

QRect PanelFrame::contentRect() const { return rect().adjusted(margin(), margin(), -margin(), -margin()); }

QSize PanelFrame::sizeHint() const { return frameAround({{}, wantedSize()}).size(); }

bool PanelFrame::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest && content_.widget && std::exchange(wanted_, wantedSize()) != wanted_)
        notify(onContentResize);
    return QWidget::event(event);
}

void PanelFrame::resizeEvent(QResizeEvent*)
{
    if (content_.widget)
        content_.widget->setGeometry(contentRect());
}

void PanelFrame::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& tokens = theme_.look.tokens();
    if (ground_ == Ground::window)
        return painter.fillRect(rect(), tokens.panel);
    const bool isRound = ground_ == Ground::floating;
    const double radius = isRound ? theme_.look.scaled(measure::panelRadius) : 0;
    const double line = theme_.look.appearance().hasHighContrast ? 1 : measure::hairline;
    if (isRound)
        shadow_.draw(painter, contentRect(), tokens.shadow);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tokens.panel);
    painter.drawRoundedRect(contentRect(), radius, radius);
    painter.setPen(QPen{tokens.edge, line});
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF{contentRect()}.adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
}

void PanelFrame::keyPressEvent(QKeyEvent* event)
{
    // Qt would take a popup away by itself, at once.
    if (event->matches(QKeySequence::Cancel))
        notify(onEscape);
    else if (windowType() != Qt::Popup)
        QWidget::keyPressEvent(event);
}

void PanelFrame::mousePressEvent(QMouseEvent* event)
{
    if (!contentRect().contains(event->position().toPoint()))
        notify(onPressOutside);
}

void PanelFrame::closeEvent(QCloseEvent* event)
{
    const auto mayClose = onClose;
    event->setAccepted(!mayClose || mayClose());
}

} // namespace vespra
