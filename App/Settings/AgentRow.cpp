#include "App/Agents/HookTexts.h"
#include "App/DesignSystem/Following.h"
#include "App/DesignSystem/Glyph.h"
#include "App/DesignSystem/SheetWindow.h"
#include "App/Model/AgentFacts.h"
#include "App/Settings/ConnectSheet.h"
#include "App/Settings/RowView.h"
#include "App/Settings/SpecialRows.h"
#include "App/Wording/Localized.h"

namespace vespra {

namespace {

    using Connection = HookSettingsFile::Connection;

    Connection connection(const AppModel& model, AgentKind agent)
    {
        const auto& known = model.agentIntegration().connections();
        const auto found = known.find(agent);
        return found == known.end() ? Connection::notConnected : found->second;
    }

    Ink ink(Connection connection)
    {
        switch (connection) {
        case Connection::connected:
            return &Tokens::ok;
        case Connection::modified:
            return &Tokens::warn;
        case Connection::notConnected:
        case Connection::agentNotFound:
            break;
        }
        return &Tokens::text3;
    }

    void disconnect(const SettingsSurface& surface, AgentKind agent, QWidget& window)
    {
        auto& integration = surface.model.agentIntegration();
        const auto done = integration.hookFile(agent).disconnect(surface.model.coordinator().now());
        integration.refresh();
        if (!done)
            showAlert(
                surface.theme, window, localized(hookTexts::failureTitle), localized(hookTexts::message(done.error())));
    }

    /// Connects or disconnects.
    QWidget* makeButton(const SettingsSurface& surface, AgentKind agent, ButtonKind kind)
    {
        auto* button = new Button{surface.theme, kind, ButtonSize::small};
        button->show(kind == ButtonKind::primary ? localized("Connect") : localized("Disconnect"));
        button->setAccessibleDescription(qtText(std::string{displayName(agent)}));
        QObject::connect(button, &QPushButton::clicked, [surface, agent, kind, button] {
            auto& window = *button->window();
            if (kind == ButtonKind::primary)
                openConnectSheet(surface, agent, window);
            else
                disconnect(surface, agent, window);
        });
        return button;
    }

} // namespace

QWidget* makeAgentRow(const SettingsSurface& surface, AgentKind agent)
{
    auto* buttons = new QWidget;
    auto* place = new QHBoxLayout{buttons};
    place->setContentsMargins({});
    auto& connects = added(*place, makeButton(surface, agent, ButtonKind::primary));
    auto& disconnects = added(*place, makeButton(surface, agent, ButtonKind::plain));
    auto* view = new RowView{surface.theme, std::string{displayName(agent)}, buttons};
    view->setLeading(new Glyph{surface.theme, std::string{panelFacts::glyph(agent)}});
    auto* status = new Activity{surface.theme};
    view->addBelow(status);
    follow(*view, surface.theme, [&connects, &disconnects, status, agent, &model = surface.model] {
        const auto now = connection(model, agent);
        status->show(localized(hookTexts::label(now)), ink(now));
        connects.setVisible(now != Connection::connected);
        disconnects.setVisible(now == Connection::connected);
    });
    return view;
}

} // namespace vespra
