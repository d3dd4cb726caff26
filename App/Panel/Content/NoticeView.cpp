#include "App/Panel/Content/NoticeView.h"

namespace vespra {

namespace {

    QString spoken(const panelFacts::Notice& notice)
    {
        if (!notice.spoken.empty())
            return qtText(notice.spoken);
        return qtText(notice.text.empty() ? notice.title : notice.title + ". " + notice.text);
    }

} // namespace

NoticeView::NoticeView(const PanelContext& context, NoteKind kind, QWidget* control, Facts facts)
    : context_{context}
    , note_{new Note{context.theme, kind, control}}
    , loop_{context.theme.mainLoop, [this, facts = std::move(facts)] { show(facts()); }}
{
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->addWidget(note_);
}

void NoticeView::show(const std::optional<panelFacts::Notice>& notice)
{
    if (!notice)
        return context_.setShown(*this, false);
    note_->show(notice->symbol, breakable(notice->title), breakable(notice->text));
    const auto name = spoken(*notice);
    const bool isNew = isHidden();
    if (name != note_->accessibleName())
        note_->setAccessibleName(name);
    context_.setShown(*this, true);
    if (isNew)
        announce(*note_);
}

} // namespace vespra
