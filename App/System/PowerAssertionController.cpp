#include "App/System/PowerAssertionController.h"

#include "Core/Scheduling/MainThread.h"

namespace vespra {

PowerAssertionController::PowerAssertionController(std::string name, const std::string& subsystem, System system)
    : name_{std::move(name)}
    , log_{subsystem, "assertions"}
    , system_{system}
{
    system_.display.onScreensWake = lifetime_.guard([this] { screensDidWake(); });
}

PowerAssertionController::~PowerAssertionController() { applyActivity(false); }

void PowerAssertionController::apply(const PowerRequirements& requirements)
{
    mainThread::check();
    applyActivity(requirements.preventsIdleSystemSleep);
    systemAssertion_ = reconcile(
        systemAssertion_, requirements.preventsIdleSystemSleep, PowerAssertionType::preventUserIdleSystemSleep);
    displayAssertion_ = reconcile(
        displayAssertion_, requirements.preventsDisplaySleep, PowerAssertionType::preventUserIdleDisplaySleep);
    applyDisplayOff(requirements.turnsDisplayOff);
}

void PowerAssertionController::applyActivity(bool wanted)
{
    if (wanted == hasActivity_)
        return;
    hasActivity_ = wanted;
    if (wanted)
        system_.assertions.beginActivity(name_);
    else
        system_.assertions.endActivity();
}

std::optional<std::uint32_t> PowerAssertionController::reconcile(
    std::optional<std::uint32_t> current, bool wanted, PowerAssertionType type)
{
    if (current && !wanted) {
        system_.assertions.release(*current);
        return {};
    }
    if (current || !wanted)
        return current;
    const auto created = system_.assertions.create(type, name_);
    if (created)
        return *created;
    log_.error(
        "Création de l'assertion " + std::string{rawValue(type)} + " impossible : " + std::to_string(created.error()));
    return {};
}

void PowerAssertionController::applyDisplayOff(bool turnsOff)
{
    if (turnsOff == turnsDisplayOff_)
        return;
    turnsDisplayOff_ = turnsOff;
    turnOffAgainTask_.reset();
    system_.display.setWatchesWaking(turnsOff);
    if (turnsOff)
        turnDisplayOff();
    else if (!system_.lid.isLidClosed())
        wakeDisplay();
}

void PowerAssertionController::turnDisplayOff()
{
    if (const auto started = system_.display.turnOff(); started)
        log_.notice("Capot fermé sans écran externe : écran éteint");
    else
        log_.error("Extinction de l'écran impossible : " + started.error());
}

void PowerAssertionController::wakeDisplay()
{
    if (const auto woken = system_.display.wake(name_); woken)
        log_.notice("Capot rouvert : écran rallumé");
    else
        log_.error("Rallumage de l'écran impossible : " + std::to_string(woken.error()));
}

void PowerAssertionController::screensDidWake()
{
    if (!turnsDisplayOff_)
        return;
    turnOffAgainTask_ = system_.tasks.schedule(turnOffAgainDelay, [this] {
        if (turnsDisplayOff_ && system_.lid.isLidClosed())
            turnDisplayOff();
    });
}

} // namespace vespra
