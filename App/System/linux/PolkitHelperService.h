#pragma once

#include "App/System/HelperService.h"
#include "App/System/linux/DBus.h"
#include "App/System/linux/HelperPrograms.h"
#include "Core/Lifetime.h"

#include <map>
#include <QProcess>

namespace vespra {

/// The component is registered when the bus can start it and it is the application's own, and approved when polkit lets
/// this user have it. Registering asks for an administrator's password and has the application's own program install
/// itself in the place of any other; a component that came with a package needs none of that, and is removed with its
/// package.
class PolkitHelperService final : public HelperService {
public:
    explicit PolkitHelperService(HelperPrograms programs = HelperPrograms::ofThisSystem());
    ~PolkitHelperService() override;
    void registerService(std::function<void(std::expected<void, std::string>)> done) override;
    void unregisterService(std::function<void(std::expected<void, std::string>)> done) override;
    void status(std::function<void(HelperServiceStatus)> answer) override;
    /// Asks at once, by polkit's own dialog: there is no page of settings to open.
    void openSettings() override;

private:
    using Answer = std::function<void(HelperServiceStatus)>;

    void ask(const QDBusMessage& message, int timeout, std::function<void(const QDBusMessage&)> onReply);
    void askPolkit(bool mayAskTheUser, int timeout, Answer answer);
    /// Tells `onChange` when the component appears on the bus, and when what the bus can start has changed.
    void watchBus();
    /// Runs the application's own component as an administrator.
    void change(const QString& option, const std::function<void(std::expected<void, std::string>)>& done);
    /// Whether no change can begin now: another is under way, or there is no program to run. If so, tells `done`.
    bool isRefused(const std::function<void(std::expected<void, std::string>)>& done);
    void ended(const std::function<void(std::expected<void, std::string>)>& done);

    HelperPrograms programs_;
    std::map<int, dbus::Call> calls_;
    int lastCall_ = 0;
    std::unique_ptr<QProcess> installer_;
    /// The user has authenticated. Where polkit does not remember that, the component has them do it again each time.
    bool isApproved_ = false;
    QDBusConnection watched_{QString{}};
    std::optional<dbus::NameWatch> owner_;
    std::optional<dbus::SignalWatch> services_;
    Lifetime lifetime_;
};

} // namespace vespra
