#include "App/Model/ModelSettings.h"

#include "App/Model/AppModel.h"
#include "App/Model/PreferencesStore.h"

namespace vespra {

UserSettings settingsOf(const AppModel& model)
{
    return {
        .session = model.coordinator().settings(),
        .preferences = model.preferences(),
        .playsHeatAlarm = model.playsHeatAlarm(),
        .showsRemainingTimeInMenuBar = model.showsRemainingTimeInMenuBar(),
        .toggleSessionKeys = model.sessionShortcut().keys(),
        .didFinishOnboarding = PreferencesStore::didFinishOnboarding(model.store()),
    };
}

void changeSetting(AppModel& model, const settingTexts::Change& change)
{
    const auto next = settingTexts::changed(settingsOf(model), {change});
    switch (change.first->storedIn) {
    case StoredValue::sessionSettings:
        return model.changeSettings([&change](SessionSettings& session) {
            session = settingTexts::changed({.session = session}, {change}).session;
        });
    case StoredValue::sessionPreferences:
        return model.setPreferences(next.preferences);
    case StoredValue::playsHeatAlarm:
        return model.setPlaysHeatAlarm(next.playsHeatAlarm);
    case StoredValue::showsRemainingTimeInMenuBar:
        return model.setShowsRemainingTimeInMenuBar(next.showsRemainingTimeInMenuBar);
    case StoredValue::toggleSessionKeys:
        if (next.toggleSessionKeys)
            model.sessionShortcut().record(*next.toggleSessionKeys);
        else
            model.sessionShortcut().clear();
        return;
    case StoredValue::didFinishOnboarding:
        return PreferencesStore::setDidFinishOnboarding(next.didFinishOnboarding, model.store());
    }
}

} // namespace vespra
