#include "App/Settings/SpecialRows.h"

#include "App/DesignSystem/Following.h"
#include "App/DesignSystem/Note.h"
#include "App/Settings/RowView.h"
#include "App/Settings/SettingFacts.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    constexpr double warningSide = 14, warningEdge = 10;

    /// Something to note among the rows of a card.
    QWidget* inCard(const Theme& theme, Note* note)
    {
        auto* place = new QWidget;
        auto* layout = new QVBoxLayout{place};
        const int side = theme.look.units(warningSide), edge = theme.look.units(warningEdge);
        layout->setContentsMargins(side, edge, side, edge);
        layout->addWidget(note);
        return place;
    }

} // namespace

QWidget* makeSpecialRow(const SettingsSurface& surface, SpecialRow row)
{
    switch (row) {
    case SpecialRow::brand:
        return makeBrandView(surface);
    case SpecialRow::openAtLogin:
        return makeOpenAtLoginRow(surface);
    case SpecialRow::loginApproval:
        return makeLoginApprovalRow(surface);
    case SpecialRow::shortcut:
        return makeShortcutRow(surface);
    case SpecialRow::component:
        return makeComponentRow(surface);
    case SpecialRow::checklist:
        return makeChecklistRow(surface);
    case SpecialRow::shutDownWarning:
        return makeShutDownWarning(surface);
    case SpecialRow::checksForUpdates:
        return makeUpdateSwitchRow(surface,
            localized("Check automatically"),
            &AppUpdates::automaticallyChecks,
            &AppUpdates::setAutomaticallyChecks);
    case SpecialRow::installsUpdates:
        return makeUpdateSwitchRow(surface,
            localized("Install automatically"),
            &AppUpdates::automaticallyInstalls,
            &AppUpdates::setAutomaticallyInstalls);
    case SpecialRow::checkNow:
        return makeCheckNowRow(surface);
    case SpecialRow::updatesByPackages:
        return makeUpdatesByPackagesRow(surface);
    case SpecialRow::acknowledgements:
        break;
    }
    return makeAcknowledgementsButton(surface);
}

QWidget* makeOpenAtLoginRow(const SettingsSurface& surface)
{
    auto* control = new Switch{surface.theme};
    auto* view = new RowView{surface.theme, localized("Open at login"), control};
    control->onSwitch = [control, &item = surface.model.loginItem()](bool isOn) {
        item.setEnabled(isOn);
        // The system may have refused.
        control->show(item.isEnabled());
    };
    follow(*view, surface.theme, [control, &item = surface.model.loginItem()] { control->show(item.isEnabled()); });
    return view;
}

QWidget* makeLoginApprovalRow(const SettingsSurface& surface)
{
    auto* button = new Button{surface.theme, ButtonKind::plain, ButtonSize::small};
    button->show(localized("Open System Settings"));
    QObject::connect(button, &QPushButton::clicked, [&item = surface.model.loginItem()] { item.openSystemSettings(); });
    auto* note = new Note{surface.theme, NoteKind::warn, button};
    note->show("exclamationmark.circle.fill", localized("Allow %1 in System Settings to finish.", {Brand::appName()}));
    return inCard(surface.theme, note);
}

QWidget* makeShutDownWarning(const SettingsSurface& surface)
{
    auto* note = new Note{surface.theme, NoteKind::warn};
    note->show("exclamationmark.circle.fill",
        localized("Shutting down needs the closed-lid component. Without it, the Mac will go to sleep instead."));
    return inCard(surface.theme, note);
}

QWidget* makeUpdateSwitchRow(const SettingsSurface& surface, const std::string& label, bool (AppUpdates::*isOn)() const,
    void (AppUpdates::*setOn)(bool))
{
    auto& updates = surface.model.updates();
    auto* control = new Switch{surface.theme};
    auto* view = new RowView{surface.theme, label, control};
    control->onSwitch = [&updates, setOn](bool on) { (updates.*setOn)(on); };
    follow(*view, surface.theme, [&updates, control, isOn] { control->show((updates.*isOn)()); });
    return view;
}

QWidget* makeCheckNowRow(const SettingsSurface& surface)
{
    auto& updates = surface.model.updates();
    auto* button = new Button{surface.theme, ButtonKind::plain, ButtonSize::small};
    auto* view = new RowView{surface.theme, "", button};
    QObject::connect(
        button, &QPushButton::clicked, [&updates] { (updates.*settingFacts::updateFacts(updates.state()).press)(); });
    follow(*view, surface.theme, [&updates, view, button] {
        const auto facts = settingFacts::updateFacts(updates.state());
        view->showSubtitle(facts.text);
        button->show(facts.button);
    });
    return view;
}

QWidget* makeUpdatesByPackagesRow(const SettingsSurface& surface)
{
    return new RowView{surface.theme,
        localized("%1 is updated together with your system, by its packages.", {Brand::appName()}),
        nullptr};
}

} // namespace vespra
