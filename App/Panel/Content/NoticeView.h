#pragma once

#include "App/DesignSystem/Note.h"
#include "App/Model/NoticeFacts.h"
#include "App/Panel/Content/PanelContext.h"

namespace vespra {

/// A note that is there while `facts`, which it follows, have something to say. A screen reader says it when it comes.
class NoticeView final : public QWidget {
public:
    using Facts = std::function<std::optional<panelFacts::Notice>()>;

    /// `control` may be null.
    NoticeView(const PanelContext& context, NoteKind kind, QWidget* control, Facts facts);

private:
    void show(const std::optional<panelFacts::Notice>& notice);

    const PanelContext& context_;
    Note* note_;
    ObservationLoop loop_;
};

} // namespace vespra
