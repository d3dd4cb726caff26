#include "App/Model/SessionShortcut.h"

#include "App/Model/PreferencesStore.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    constexpr const char* name = "toggleSession";

} // namespace

SessionShortcut::SessionShortcut(GlobalShortcut& shortcut, UserDefaults* defaults)
    : shortcut_{shortcut}
    , defaults_{defaults}
    , log_{Brand::appBundleID(), "shortcut"}
    , keys_{PreferencesStore::toggleSessionKeys(defaults)}
{
}

void SessionShortcut::start(std::function<void()> onPressed)
{
    onPressed_ = std::move(onPressed);
    apply();
}

void SessionShortcut::stop()
{
    onPressed_ = nullptr;
    apply();
}

bool SessionShortcut::record(const KeyCombination& keys)
{
    if (!keys.canBeGlobal())
        return false;
    PreferencesStore::setToggleSessionKeys(keys, defaults_);
    use(keys);
    return true;
}

void SessionShortcut::clear()
{
    PreferencesStore::setToggleSessionKeys({}, defaults_);
    use({});
}

void SessionShortcut::setForThisRun(const std::optional<KeyCombination>& keys)
{
    if (keys != keys_.get())
        use(keys);
}

void SessionShortcut::setPaused(bool paused)
{
    if (paused == std::exchange(isPaused_, paused))
        return;
    apply();
}

void SessionShortcut::use(const std::optional<KeyCombination>& keys)
{
    keys_.set(keys);
    failure_.set({});
    desktopsKeys_.set({});
    apply();
}

void SessionShortcut::apply()
{
    const auto keys = keys_.get();
    if (!onPressed_ || isPaused_ || !keys)
        return shortcut_.clear(name);
    shortcut_.set({
        .name = name,
        .description = localized("Start or stop a session"),
        .keys = *keys,
        .onKeyUp = onPressed_,
        .onOutcome = lifetime_.guard([this](const GlobalShortcut::Outcome& outcome) { answered(outcome); }),
    });
}

void SessionShortcut::answered(const GlobalShortcut::Outcome& outcome)
{
    desktopsKeys_.set(outcome.value_or(""));
    failure_.set(outcome ? std::nullopt : std::optional{outcome.error()});
    if (outcome)
        return;
    switch (outcome.error()) {
    case GlobalShortcut::Failure::conflict:
        return log_.notice("Raccourci clavier déjà pris par une autre application");
    case GlobalShortcut::Failure::unassigned:
        return log_.info("Raccourci clavier sans touches : à choisir dans les réglages du bureau");
    case GlobalShortcut::Failure::unavailable:
        return log_.info("Raccourci clavier indisponible sur ce bureau");
    }
}

} // namespace vespra
