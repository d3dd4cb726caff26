#include "Control/Doctor/linux/LidRules.h"

#include <algorithm>

namespace vespra::doctor {

namespace {

    std::vector<Inhibitor> blocksOf(std::string_view what, const std::vector<Inhibitor>& held)
    {
        std::vector<Inhibitor> all;
        std::ranges::copy_if(held, std::back_inserter(all), [what](const Inhibitor& each) {
            return each.service == "logind" && each.mode == "block" && each.covers(what);
        });
        return all;
    }

    std::string holder(const Inhibitor& lock)
    {
        return lock.who + " (" + (lock.process.empty() ? "process" : lock.process) + " " + std::to_string(lock.pid)
            + ")";
    }

    struct Setting {
        std::string text;
        bool acts;
    };

    /// The setting of logind's that applies to the present state of charger and dock.
    Setting settingInForce(const LidRules& rules)
    {
        const auto setting = [](const char* name, const std::string& action, const char* because) {
            return Setting{std::string{name} + "=" + action + because, action != "ignore"};
        };
        if (*rules.isDocked)
            return setting("HandleLidSwitchDocked", rules.actionDocked, " (docked, or more than one display)");
        if (rules.isOnExternalPower.value_or(false) && rules.actionOnExternalPower)
            return setting("HandleLidSwitchExternalPower", *rules.actionOnExternalPower, " (on external power)");
        return setting("HandleLidSwitch", rules.action, "");
    }

    struct Outcome {
        std::string text;
        /// Whether something may put the machine to sleep, as far as that can be told.
        bool isThreat;
    };

    Outcome logindsPart(const LidRules& rules, const std::vector<Inhibitor>& held)
    {
        if (!rules.isDocked)
            return {"logind does not answer, so nobody can tell what it would do", true};
        if (const auto locks = blocksOf("handle-lid-switch", held); !locks.empty())
            return {
                "logind leaves it to " + holder(locks.front()) + ", which holds handle-lid-switch and may act itself",
                true};
        const auto setting = settingInForce(rules);
        if (!setting.acts)
            return {"logind does nothing, by " + setting.text, false};
        if (const auto locks = blocksOf("sleep", held); !rules.ignoresSleepLocks && !locks.empty())
            return {"logind would act by " + setting.text + ", but LidSwitchIgnoreInhibited=no lets the sleep lock of "
                    + holder(locks.front()) + " stop it",
                false};
        return {"logind would act by " + setting.text, true};
    }

} // namespace

std::string lidThreat(const LidRules& rules, const std::vector<Inhibitor>& held, const std::string& application)
{
    const std::string what = "Closing the lid: ";
    if (rules.isThere == false)
        return what + "this machine has none.";
    const auto locks = blocksOf("handle-lid-switch", held);
    if (std::ranges::any_of(locks, [&](const Inhibitor& lock) { return lock.who == application; }))
        return what + "closed-lid mode holds handle-lid-switch, so nothing happens.";
    auto [text, isThreat] = logindsPart(rules, held);
    if (rules.desktop)
        text += "; " + *rules.desktop + " may act on it too, by its own settings";
    if (isThreat || rules.desktop)
        text += rules.hasHelper ? "; closed-lid mode prevents it" : "; only closed-lid mode could prevent it";
    return what + text + (rules.isThere ? "." : ". Whether there is a lid is not known.");
}

} // namespace vespra::doctor
