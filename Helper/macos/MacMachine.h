#pragma once

#include "Helper/HelperDaemon.h"

namespace vespra {

/// The "SleepDisabled" setting of the power management. It outlives the process and the computer's restart; while it is
/// on, the system does not even sleep for heat or an empty battery.
class MacSleepSetting final : public SleepSetting {
public:
    std::expected<bool, std::string> isSleepDisabled() override;
    /// Takes effect a little later, and does not look at the lid again.
    HelperResult setSleepDisabled(bool disabled) override;
};

/// Sleep by IOKit, shutdown by its command, and the lid as the kernel sees it.
class MacPower final : public PowerControl {
public:
    /// macOS does not tell beforehand.
    HelperResult canSuspend() override { return {}; }
    HelperResult suspend() override;
    HelperResult powerOff() override;
    bool shouldSleepForLid() override;
};

/// Allows everything: the listener accepts only programs with the application's signature.
class SignedCallers final : public Authorization {
public:
    void check(const ClientName&, Right, Interaction, std::function<void(const Verdict&)> answer) override
    {
        answer({});
    }
};

} // namespace vespra
