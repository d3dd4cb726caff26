#pragma once

#include "App/Panel/Content/AgentRow.h"

#include <QScrollArea>

#include <map>

namespace vespra {

/// The agents, oldest first. The one part of the panel that scrolls when the screen is too low.
class AgentList final : public QScrollArea {
public:
    explicit AgentList(const PanelContext& context);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(const AppModel& model, const PanelClock& clock);
    AgentRow& row(const std::string& id, std::string_view glyph);
    void dropOthers(const std::vector<AgentSession>& sessions);
    int rowsHeight() const;

    const PanelContext& context_;
    QWidget* rows_;
    QVBoxLayout* column_;
    /// By the identifier of the agent's session.
    std::map<std::string, AgentRow*> shown_;
    FollowsLook follows_;
    ObservationLoop loop_;
};

} // namespace vespra
