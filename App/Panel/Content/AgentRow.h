#pragma once

#include "App/DesignSystem/Card.h"
#include "App/Model/AgentFacts.h"
#include "App/Panel/Content/PanelContext.h"

namespace vespra {

/// One agent: where it works, since when it does what it does now, and what that is.
class AgentRow final : public QWidget {
public:
    /// `glyph` stands for the agent.
    AgentRow(const Theme& theme, std::string_view glyph);

    void show(const panelFacts::AgentLine& line, bool isFirst);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void layOut();

    const Theme theme_;
    std::optional<panelFacts::AgentLine> line_;
    bool isFirst_ = true;
    QHBoxLayout* row_;
    Label* name_;
    Label* detail_;
    Activity* activity_;
    FollowsLook follows_;
};

} // namespace vespra
