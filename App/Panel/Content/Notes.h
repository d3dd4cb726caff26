#pragma once

#include "App/Panel/Content/NoticeView.h"

/// The notes of the panel.
namespace vespra::notes {

/// A sleep or a shutdown is counted down to; it can be cancelled.
NoticeView* forcedAction(const PanelContext& context);
/// A guardrail ended the last session; it can be dismissed.
NoticeView* guardrailEnd(const PanelContext& context);
/// No agent is connected; here is where one is.
NoticeView* connectAgent(const PanelContext& context);
NoticeView* startBlocker(const PanelContext& context);
NoticeView* heat(const PanelContext& context);
NoticeView* closedLidRefusal(const PanelContext& context);
/// The agents have finished; the user can keep the machine awake.
NoticeView* finishing(const PanelContext& context);
/// The agents do not decide yet, or no longer.
NoticeView* agentPhase(const PanelContext& context);

} // namespace vespra::notes
