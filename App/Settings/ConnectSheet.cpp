#include "App/Settings/ConnectSheet.h"

#include "App/Agents/HookTexts.h"
#include "App/DesignSystem/Note.h"
#include "App/Wording/Localized.h"

#include <QPointer>

namespace vespra {

namespace {

    constexpr double sheetWidth = 584;
    constexpr int previewLines = 13;

    /// As the user writes it: "~/.codex/hooks.json". Agents have their settings in a folder of the home directory.
    std::string shortPath(const std::filesystem::path& file)
    {
        return "~" / file.lexically_relative(file.parent_path().parent_path());
    }

    void connectAgent(const SettingsSurface& surface, AgentKind agent, QWidget* window)
    {
        auto& integration = surface.model.agentIntegration();
        const auto done = integration.hookFile(agent).connect(surface.model.coordinator().now());
        integration.refresh();
        if (!done && window)
            showAlert(surface.theme,
                *window,
                localized(hookTexts::failureTitle),
                localized(hookTexts::message(done.error())));
    }

} // namespace

SheetWindow& openConnectSheet(const SettingsSurface& surface, AgentKind agent, QWidget& window)
{
    const auto& theme = surface.theme;
    const auto hooks = surface.model.agentIntegration().hookFile(agent);
    const auto title = localized("Connect %1", {std::string{displayName(agent)}});
    auto* sheet = new SheetWindow{theme, title, sheetWidth, window};
    sheet->add(new Label{theme, TextStyle::body})
        .show(localized("These lines will be added to %1. A backup is made first, and nothing already there is "
                        "changed.",
            {shortPath(hooks.file)}));
    const auto previewName = localized("Lines to be added");
    sheet->add(makeTextView(theme, previewName, hooks.installer.preview(), previewLines), 1);
    if (agent == AgentKind::codex)
        sheet->add(new Note{theme, NoteKind::info}).show("info.circle", localized(hookTexts::codexNote));
    sheet->addButton(localized("Cancel"), ButtonKind::plain);
    sheet->addButton(localized("Connect"), ButtonKind::primary, [surface, agent, parent = QPointer{&window}] {
        connectAgent(surface, agent, parent);
    });
    sheet->open();
    return *sheet;
}

} // namespace vespra
