#include "App/Panel/Content/PanelContent.h"

#include "App/Panel/Content/AgentList.h"
#include "App/Panel/Content/EndActionCard.h"
#include "App/Panel/Content/Header.h"
#include "App/Panel/Content/Hero.h"
#include "App/Panel/Content/ModeView.h"
#include "App/Panel/Content/Notes.h"
#include "App/Panel/Content/OptionsCard.h"
#include "App/Panel/Content/SessionButtons.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace vespra {

namespace {

    /// Whatever may have the focus, in the order of the screen.
    void collectFocusable(const QLayout& layout, std::vector<QWidget*>& found)
    {
        for (int index = 0; index < layout.count(); ++index) {
            auto* item = layout.itemAt(index);
            auto* widget = item->widget();
            // Also what Tab leaves out now: of choices that exclude each other it takes the chosen one.
            if (widget && widget->focusPolicy() != Qt::NoFocus)
                found.push_back(widget);
            if (const auto* inside = widget ? widget->layout() : item->layout())
                collectFocusable(*inside, found);
        }
    }

} // namespace

PanelContent::PanelContent(const SurfaceContext& context, const Theme& theme, std::function<void()> hide)
    : clock_{context.model, context.clock}
    , context_{.model = context.model,
          .theme = theme,
          .tasks = context.tasks,
          .clock = clock_,
          .hidePanel = std::move(hide),
          .takeFocus =
              [this] {
                  if (buttons_)
                      buttons_->takeFocus();
              }}
    , column_{new QVBoxLayout{this}}
{
    addViews();
    sizes_.emplace(theme.mainLoop, [this, &look = theme.look] {
        const int padding = look.units(measure::panelPadding);
        column_->setContentsMargins(padding, padding, padding, padding);
        column_->setSpacing(look.units(measure::panelGap));
        setFixedWidth(look.units(measure::panelWidth));
    });
    placing_.emplace(theme.mainLoop, [this] { placeButtons(); });
}

PanelContent::~PanelContent() = default;

/// From top to bottom.
void PanelContent::addViews()
{
    column_->addWidget(new Header{context_});
    column_->addWidget(notes::forcedAction(context_));
    column_->addWidget(notes::guardrailEnd(context_));
    column_->addWidget(new ModeView{context_});
    column_->addWidget(notes::connectAgent(context_));
    column_->addWidget(new Hero{context_});
    column_->addWidget(notes::heat(context_));
    column_->addWidget(notes::finishing(context_));
    column_->addWidget(notes::agentPhase(context_));
    agents_ = &added(*column_, new AgentList{context_});
    column_->addWidget(new OptionsCard{context_});
    column_->addWidget(notes::closedLidRefusal(context_));
    column_->addWidget(new EndActionCard{context_});
    column_->addWidget(notes::startBlocker(context_));
    buttons_ = &added(*column_, new SessionButtons{context_});
}

/// Below everything, except in a session that the user only watches run out: there they follow the clock. They stay
/// where they are for as long as somebody sees them, lest another button comes under the pointer.
void PanelContent::placeButtons()
{
    const auto* session = context_.model.coordinator().state().activeSession();
    const bool isHigher = session && session->mode() != SessionMode::agent && !session->options.closedLid;
    const auto begun = session ? std::optional{session->startedAt} : std::nullopt;
    if (isVisible() && begun == placedFor_)
        return;
    placedFor_ = begun;
    column_->removeWidget(buttons_);
    column_->insertWidget(isHigher ? column_->indexOf(agents_) : column_->count(), buttons_);
    orderFocus();
}

/// Tab goes as the eyes do.
void PanelContent::orderFocus()
{
    std::vector<QWidget*> order;
    collectFocusable(*column_, order);
    for (std::size_t next = 1; next < order.size(); ++next)
        setTabOrder(order[next - 1], order[next]);
}

QSize PanelContent::sizeHint() const
{
    return {minimumWidth(), std::min(column_->totalHeightForWidth(minimumWidth()), maximumHeight())};
}

QSize PanelContent::minimumSizeHint() const { return {minimumWidth(), column_->minimumHeightForWidth(minimumWidth())}; }

void PanelContent::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    clock_.setShown(true);
    if (!buttons_->takeFocus())
        focusNextChild();
}

void PanelContent::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    clock_.setShown(false);
    placeButtons();
}

void PanelContent::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QWidget::keyPressEvent(event);
    if (event->isAutoRepeat())
        return;
    if (auto* button = qobject_cast<QPushButton*>(window()->focusWidget()); button && isAncestorOf(button))
        return button->click();
    buttons_->pressReturn();
}

} // namespace vespra
