#include "App/Updates/AppUpdates.h"

namespace vespra {

AppUpdates::AppUpdates(Updater* updater)
    : updater_{updater}
{
    if (!updater_)
        return;
    updater_->onWillShowUpdate = lifetime_.guard([this](const std::string& version, bool isAskedFor) {
        if (!isAskedFor)
            notify(onUpdateFound, version);
    });
    updater_->onUpdateSeen = lifetime_.guard([this] { notify(onUpdateSeen); });
    updater_->onCycleFinished = lifetime_.guard([this] { read(); });
    read();
}

/// The updater's own windows change what is chosen as well.
void AppUpdates::read()
{
    automaticallyChecks_.set(updater_->automaticallyChecks());
    automaticallyInstalls_.set(updater_->automaticallyInstalls());
    lastCheck_.set(updater_->lastCheck());
}

void AppUpdates::setAutomaticallyChecks(bool checks)
{
    if (!updater_)
        return;
    updater_->setAutomaticallyChecks(checks);
    automaticallyChecks_.set(checks);
}

void AppUpdates::setAutomaticallyInstalls(bool installs)
{
    if (!updater_)
        return;
    updater_->setAutomaticallyInstalls(installs);
    automaticallyInstalls_.set(installs);
}

void AppUpdates::checkForUpdates()
{
    if (updater_)
        updater_->checkForUpdates();
}

void AppUpdates::install()
{
    if (updater_)
        updater_->install();
}

void AppUpdates::cancel()
{
    if (updater_)
        updater_->cancel();
}

} // namespace vespra
