#pragma once

#include "App/System/LoginService.h"

namespace vespra {

/// The login items of a simulated laptop, which allows everything. Main thread only.
class SimulatedLoginService final : public LoginService {
public:
    LoginServiceStatus status() const override { return status_; }
    std::expected<void, std::string> registerApplication() override
    {
        status_ = LoginServiceStatus::enabled;
        return {};
    }
    std::expected<void, std::string> unregisterApplication() override
    {
        status_ = LoginServiceStatus::notRegistered;
        return {};
    }

private:
    LoginServiceStatus status_ = LoginServiceStatus::notRegistered;
};

} // namespace vespra
