#include "App/Panel/PanelFrame.h"

#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/ScrollArea.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace vespra {

PanelFrame::PanelFrame(const Theme& theme, std::function<QWidget*()> makeContent)
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
    if (content_)
        return;
    content_ = makeContent_();
    scroller_ = new ScrollArea{theme_};
    scroller_->setParent(this);
    scroller_->setWidget(content_);
    scroller_->viewport()->installEventFilter(this);
    content_->setAutoFillBackground(false);
    scroller_->setGeometry(contentRect());
    scroller_->show();
}

int PanelFrame::margin() const { return ground_ == Ground::floating ? static_cast<int>(measure::shadowMargin) : 0; }

QSize PanelFrame::wantedSize() const
{
    return {theme_.look.units(measure::panelWidth), content_ ? content_->sizeHint().height() : 0};
}

QSize PanelFrame::contentSize(int maximumHeight)
{
    build();
    content_->ensurePolished();
    content_->setMaximumHeight(std::max(maximumHeight, content_->minimumSizeHint().height()));
    wanted_ = wantedSize();
    return wanted_.boundedTo({QWIDGETSIZE_MAX, maximumHeight});
}

QRect PanelFrame::frameAround(const QRect& content) const
{
    return content.adjusted(-margin(), -margin(), margin(), margin());
}

QRect PanelFrame::contentRect() const { return rect().adjusted(margin(), margin(), -margin(), -margin()); }

QSize PanelFrame::sizeHint() const { return frameAround({{}, wantedSize()}).size(); }

bool PanelFrame::eventFilter(QObject*, QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest && wantedSize() != wanted_) {
        wanted_ = wantedSize();
        notify(onContentResize);
    }
    return false;
}

void PanelFrame::resizeEvent(QResizeEvent*)
{
    if (scroller_)
        scroller_->setGeometry(contentRect());
}

void PanelFrame::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& tokens = theme_.look.tokens();
    if (ground_ == Ground::window)
        return painter.fillRect(rect(), tokens.panel);
    const bool isRound = ground_ == Ground::floating;
    const double radius = isRound ? theme_.look.scaled(measure::panelRadius) : 0;
    const double line = tokens.hairline;
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
