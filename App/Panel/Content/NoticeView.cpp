#include "App/Panel/Content/NoticeView.h"

#include <QAccessibleWidget>
#include <QVBoxLayout>

namespace vespra {

namespace {

    QString spoken(const panelFacts::Notice& notice)
    {
        if (!notice.spoken.empty())
            return qtText(notice.spoken);
        return qtText(notice.text.empty() ? notice.title : notice.title + ". " + notice.text);
    }

    /// Screen readers say an alert as soon as it is there.
    QAccessibleInterface* accessibleNotice(const QString&, QObject* object)
    {
        auto* notice = dynamic_cast<NoticeView*>(object);
        return notice ? new QAccessibleWidget{notice, QAccessible::AlertMessage} : nullptr;
    }

} // namespace

NoticeView::NoticeView(const PanelContext& context, NoteKind kind, QWidget* control, Facts facts)
    : context_{context}
    , note_{new Note{context.theme, kind, control}}
    , loop_{context.theme.mainLoop, [this, facts = std::move(facts)] { show(facts()); }}
{
    QAccessible::installFactory(accessibleNotice);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->addWidget(note_);
}

void NoticeView::show(const std::optional<panelFacts::Notice>& notice)
{
    if (!notice)
        return context_.setShown(*this, false);
    const bool isNew = isHidden();
    note_->show(notice->symbol, notice->title, notice->text);
    if (const auto name = spoken(*notice); name != accessibleName())
        setAccessibleName(name);
    context_.setShown(*this, true);
    if (isNew)
        announce(*this);
}

} // namespace vespra
