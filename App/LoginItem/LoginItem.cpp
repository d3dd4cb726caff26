#include "App/LoginItem/LoginItem.h"

#include "HelperProtocol/Brand.h"

namespace vespra {

LoginItem::LoginItem(LoginService* service)
    : service_{service}
    , log_{Brand::appBundleID(), "login"}
{
    if (service_)
        service_->onChange = lifetime_.guard([this] { refresh(); });
}

void LoginItem::refresh()
{
    if (!service_)
        return;
    const auto status = service_->status();
    isEnabled_.set(status == LoginServiceStatus::enabled);
    requiresApproval_.set(status == LoginServiceStatus::requiresApproval);
}

void LoginItem::setEnabled(bool enabled)
{
    if (!service_)
        return;
    const auto changed = enabled ? service_->registerApplication() : service_->unregisterApplication();
    if (!changed)
        log_.error("Ouverture à la connexion : " + changed.error());
    refresh();
}

void LoginItem::openSystemSettings()
{
    if (service_)
        service_->openSettings();
}

} // namespace vespra
