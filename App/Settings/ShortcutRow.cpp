#include "App/DesignSystem/Following.h"
#include "App/Settings/RowView.h"
#include "App/Settings/ShortcutRecorder.h"
#include "App/Settings/SpecialRows.h"
#include "App/Wording/Localized.h"

namespace vespra {

QWidget* makeShortcutRow(const SettingsSurface& surface)
{
    auto* recorder = new ShortcutRecorder{surface};
    auto* view = new RowView{surface.theme, localized("Start or stop a session"), recorder};
    view->showSubtitle(localized("Starts a session with your last settings, or stops the current one, from any app."));
    auto* problem = new Label{surface.theme, TextStyle::caption, &Tokens::warn};
    view->addAtEnd(problem);
    follow(*view, surface.theme, [problem, recorder] {
        const auto text = recorder->problem();
        problem->show(text);
        problem->setVisible(!text.empty());
    });
    return view;
}

} // namespace vespra
