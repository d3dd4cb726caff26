#pragma once

#include "App/System/GlobalShortcut.h"
#include "App/System/linux/PortalRequest.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"

#include <map>
#include <memory>
#include <string>

namespace vespra {

/// Asks the desktop's portal for keys. The desktop may ask the user, who may choose others then and later; what was
/// chosen once counts before the keys that are asked for. Where the portal has no shortcuts, no keys are available.
class PortalShortcut final : public GlobalShortcut {
public:
    /// `mainLoop` outlives it. The desktop knows the application by `desktopEntry`, the name of its desktop file.
    PortalShortcut(MainLoop& mainLoop, const QString& desktopEntry);
    ~PortalShortcut() override;

    void set(Request request) override;
    void clear(std::string_view name) override;

private:
    /// A session of the portal's can take keys only once, so each shortcut has its own.
    struct Shortcut {
        Request request;
        QString session;
        std::unique_ptr<PortalRequest> creation, binding;
    };
    /// Works with what is there when it is called; a shortcut may have been cleared in between.
    template <class Action> void later(const std::string& name, Action action);

    void ask(const std::string& name);
    void created(const std::string& name, const PortalRequest::Response& response);
    void bound(const std::string& name, const PortalRequest::Response& response);
    void tell(const std::string& name, const Outcome& outcome);
    void ownerChanged(bool owned);
    void released(const QDBusMessage& signal);
    void changed(const QDBusMessage& signal);
    void close(const Shortcut& shortcut);

    MainLoop& mainLoop_;
    std::map<std::string, Shortcut, std::less<>> shortcuts_;
    dbus::Call registration_;
    dbus::SignalWatch releases_, changes_;
    dbus::NameWatch owner_;
    Lifetime lifetime_;
};

} // namespace vespra
