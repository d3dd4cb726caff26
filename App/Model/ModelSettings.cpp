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

void changeSetting(AppModel& model, const Setting& setting, const std::function<void(UserSettings&)>& change)
{
    auto next = settingsOf(model);
    change(next);
    switch (setting.storedIn) {
    case StoredValue::sessionSettings:
        return model.changeSettings([&change](SessionSettings& session) {
            UserSettings all{.session = session};
            change(all);
            session = all.session;
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

void changeSetting(AppModel& model, const settingTexts::Change& change)
{
    changeSetting(model, *change.first, [&change](UserSettings& settings) {
        settings = settingTexts::changed(std::move(settings), {change});
    });
}

} // namespace vespra
