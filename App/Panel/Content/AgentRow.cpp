#include "App/Panel/Content/AgentRow.h"

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Glyph.h"

#include <QPainter>

namespace vespra {

namespace {

    using panelFacts::AgentStatus;

    Ink ink(AgentStatus status)
    {
        switch (status) {
        case AgentStatus::working:
            return &Tokens::accent;
        case AgentStatus::waitingForApproval:
            return &Tokens::info;
        case AgentStatus::finished:
            return &Tokens::ok;
        case AgentStatus::idle:
            break;
        }
        return &Tokens::text3;
    }

    constexpr double rowEdge = 8; // points

} // namespace

AgentRow::AgentRow(const Theme& theme, std::string_view glyph)
    : theme_{theme}
    , row_{new QHBoxLayout{this}}
    , name_{new Label{theme, TextStyle::strong}}
    , detail_{new Label{theme, TextStyle::caption, &Tokens::text2}}
    , activity_{new Activity{theme}}
    , follows_{theme, *this, [this] { layOut(); }}
{
    row_->addWidget(new Glyph{theme, std::string{glyph}});
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(name_);
    texts->addWidget(detail_);
    row_->addLayout(texts, 1);
    row_->addWidget(activity_);
}

void AgentRow::layOut()
{
    const auto& look = theme_.look;
    const int side = look.units(measure::rowPadding), edge = look.units(rowEdge);
    row_->setContentsMargins(side, edge, side, edge);
    row_->setSpacing(look.units(measure::rowGap));
    setMinimumHeight(look.units(measure::rowHeight));
}

void AgentRow::show(const panelFacts::AgentLine& line, bool isFirst)
{
    if (line_ == line && isFirst_ == isFirst)
        return;
    if (isFirst_ != isFirst)
        update();
    line_ = line;
    isFirst_ = isFirst;
    name_->show(line.name);
    detail_->show(line.detail);
    activity_->show(line.activity, ink(line.status));
    setAccessibleName(qtText(line.name + ", " + line.detail + ", " + line.activity));
}

void AgentRow::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    if (!isFirst_)
        drawHairline(painter, {0, 0}, width(), theme_.look.scale(), theme_.look.tokens());
}

} // namespace vespra
