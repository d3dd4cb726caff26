#include "App/Panel/Content/AgentRow.h"

#include "App/DesignSystem/Drawing.h"

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

AgentRow::AgentRow(const Theme& theme)
    : theme_{theme}
    , row_{new QHBoxLayout{this}}
    , name_{new Label{theme, TextStyle::strong}}
    , detail_{new Label{theme, TextStyle::caption, &Tokens::text2}}
    , activity_{new Activity{theme}}
    , follows_{theme, *this, [this] { layOut(); }}
{
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
    const int lead = side + look.units(measure::glyphSize + measure::rowGap);
    const bool isMirrored = isRightToLeft();
    row_->setContentsMargins(isMirrored ? side : lead, edge, isMirrored ? lead : side, edge);
    row_->setSpacing(look.units(measure::rowGap));
    setMinimumHeight(look.units(measure::rowHeight));
}

void AgentRow::show(const panelFacts::AgentLine& line, bool isFirst)
{
    if (line_ == line && isFirst_ == isFirst)
        return;
    line_ = line;
    isFirst_ = isFirst;
    name_->show(line.name);
    detail_->show(line.detail);
    activity_->show(line.activity, ink(line.status));
    setAccessibleName(qtText(line.name + ", " + line.detail + ", " + line.activity));
    update();
}

QRectF AgentRow::glyphPlace() const
{
    const auto& look = theme_.look;
    const double size = look.scaled(measure::glyphSize), padding = look.scaled(measure::rowPadding);
    return {isRightToLeft() ? width() - padding - size : padding, (height() - size) / 2, size, size};
}

void AgentRow::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    const auto& tokens = look.tokens();
    if (!isFirst_)
        drawHairline(painter, {0, 0}, width(), look.scale(), tokens);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tokens.surface2);
    const double radius = look.scaled(measure::glyphRadius);
    painter.drawRoundedRect(glyphPlace(), radius, radius);
    auto font = look.font(TextStyle::section);
    constexpr double smaller = 11.0 / 12;
    font.setPointSizeF(font.pointSizeF() * smaller);
    painter.setFont(font);
    painter.setPen(tokens.text2);
    const auto glyph = line_ ? line_->glyph : std::string_view{};
    painter.drawText(glyphPlace(), Qt::AlignCenter, qtText(std::string{glyph}));
}

} // namespace vespra
