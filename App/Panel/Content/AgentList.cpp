#include "App/Panel/Content/AgentList.h"

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/ScrollArea.h"
#include "App/Wording/Localized.h"

#include <QEvent>
#include <QPainter>
#include <QResizeEvent>

namespace vespra {

AgentList::AgentList(const PanelContext& context)
    : context_{context}
    , rows_{new QWidget}
    , column_{new QVBoxLayout{rows_}}
    , follows_{context.theme, *this}
    , loop_{context.theme.mainLoop, [this, &model = context.model, &clock = context.clock] { follow(model, clock); }}
{
    column_->setContentsMargins({});
    column_->setSpacing(0);
    dressScrollBars(context.theme, *this);
    setWidget(rows_);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    rows_->setAutoFillBackground(false);
    rows_->installEventFilter(this);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    setAccessibleName(qtText(localized("Agents")));
    FocusRing::setRadius(*this, measure::cardRadius);
}

void AgentList::follow(const AppModel& model, const PanelClock& clock)
{
    const bool isShown = panelFacts::showsAgents(model);
    if (isShown) {
        const auto& sessions = model.agents().sessions();
        dropOthers(sessions);
        for (int place = 0; const auto& session : sessions) {
            const auto step = panelFacts::sinceStep(model.coordinator().now() - session.activitySince);
            const auto facts = panelFacts::agentLine(session, clock.now(session.activitySince, step));
            auto& line = row(session.id, facts.glyph);
            line.show(facts, place == 0);
            // What stands where it belongs stays untouched.
            if (column_->indexOf(&line) != place)
                column_->insertWidget(place, &line);
            ++place;
        }
    }
    context_.setShown(*this, isShown);
}

AgentRow& AgentList::row(const std::string& id, std::string_view glyph)
{
    auto& found = shown_[id];
    if (!found)
        column_->addWidget(found = new AgentRow{context_.theme, glyph});
    return *found;
}

void AgentList::dropOthers(const std::vector<AgentSession>& sessions)
{
    std::erase_if(shown_, [&](const auto& entry) {
        const bool stays = std::ranges::find(sessions, entry.first, &AgentSession::id) != sessions.end();
        if (!stays)
            delete entry.second;
        return !stays;
    });
}

int AgentList::rowsHeight() const
{
    // That of the list once it is laid out, which its height is asked for before.
    const int width
        = context_.theme.look.units(measure::panelWidth) - 2 * context_.theme.look.units(measure::panelPadding);
    return column_->hasHeightForWidth() ? column_->totalHeightForWidth(width) : column_->totalSizeHint().height();
}

QSize AgentList::sizeHint() const { return {0, rowsHeight()}; }

/// One row and the beginning of the next show that there are more.
QSize AgentList::minimumSizeHint() const
{
    constexpr double rows = 1.6;
    return {0, std::min(rowsHeight(), context_.theme.look.units(rows * measure::rowHeight))};
}

/// The ground lies below the bar as well.
bool AgentList::event(QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        QPainter painter{this};
        drawCard(painter, rect(), context_.theme.look.scale(), context_.theme.look.tokens());
    }
    return QScrollArea::event(event);
}

void AgentList::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    // What fits needs no keys.
    setFocusPolicy(rowsHeight() > height() ? Qt::StrongFocus : Qt::NoFocus);
}

bool AgentList::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == rows_ && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

} // namespace vespra
