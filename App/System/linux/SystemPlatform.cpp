#include "App/System/SystemPlatform.h"

#include "App/System/linux/AutostartEntry.h"
#include "App/System/linux/Desktop.h"
#include "App/System/linux/DesktopNotifications.h"
#include "App/System/linux/LinuxAssertions.h"
#include "App/System/linux/LinuxDisplay.h"
#include "App/System/linux/LinuxHelper.h"
#include "App/System/linux/LinuxLid.h"
#include "App/System/linux/LinuxPowerSource.h"
#include "App/System/linux/LinuxThermal.h"
#include "App/System/linux/LinuxUpdateTools.h"
#include "App/System/linux/Logind.h"
#include "App/System/linux/LogindSleep.h"
#include "App/System/linux/PortalAppearance.h"
#include "App/System/linux/PortalAutostart.h"
#include "App/System/linux/PortalShortcut.h"
#include "App/System/linux/ProcessSoundPlayer.h"
#include "App/System/linux/SessionInhibitor.h"
#include "App/System/linux/TimerfdScheduler.h"
#include "App/System/linux/X11Shortcut.h"
#include "App/System/QtMainLoop.h"
#include "HelperProtocol/Brand.h"
#include "Host/Host.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace vespra {

namespace {

    constexpr auto sysfsRoot = "/sys";

    constexpr auto system = PowerAssertionType::preventUserIdleSystemSleep;
    constexpr auto display = PowerAssertionType::preventUserIdleDisplaySleep;

    SystemLog assertionsLog() { return {Brand::appBundleID(), "assertions"}; }
    SystemLog notificationsLog() { return {Brand::appBundleID(), "notifications"}; }
    /// The name of the application's desktop files, without their ending.
    QString desktopEntry() { return QString::fromStdString(Brand::appBundleID()); }
    QString application() { return QString::fromStdString(Brand::appName()); }

    std::unique_ptr<LogindLock> logindLock(const char* what, const char* mode, TaskScheduling& tasks)
    {
        return std::make_unique<LogindLock>(
            application(), QLatin1String{what}, QLatin1String{mode}, tasks, assertionsLog());
    }

    /// Lets the screen go dark where the desktop can tell that from sleep: GNOME and Plasma can, Xfce cannot.
    std::unique_ptr<Inhibition> idleInhibitor(TaskScheduling& tasks)
    {
        constexpr unsigned suspend = 4;
        return std::make_unique<SessionInhibitor>(application(),
            std::vector{InhibitService::sessionManager(suspend), InhibitService::powerManagement()},
            nullptr,
            tasks,
            assertionsLog());
    }

    std::unique_ptr<Inhibition> displayInhibitor(TaskScheduling& tasks)
    {
        constexpr unsigned idle = 8;
        return std::make_unique<SessionInhibitor>(application(),
            std::vector{
                InhibitService::screenSaver(), InhibitService::sessionManager(idle), InhibitService::powerManagement()},
            std::make_unique<X11ScreenSaver>(),
            tasks,
            assertionsLog());
    }

    std::vector<LinuxAssertions::Means> means(TaskScheduling& tasks)
    {
        // Plasma takes logind's idle lock for a wish to keep the screen on.
        const auto logindServes = desktop::isCurrent("KDE") ? std::set{display} : std::set{system, display};
        std::vector<LinuxAssertions::Means> all;
        all.push_back({logindServes, logindLock("idle", "block", tasks)});
        all.push_back({{system}, idleInhibitor(tasks)});
        all.push_back({{display}, displayInhibitor(tasks)});
        return all;
    }

    std::unique_ptr<LoginService> makeLoginService()
    {
        if (PortalAutostart::isNeeded())
            return std::make_unique<PortalAutostart>(PortalAutostart::standardFile(application()),
                application(),
                QStringList{QFileInfo{QCoreApplication::applicationFilePath()}.fileName()},
                SystemLog{Brand::appBundleID(), "login"});
        return std::make_unique<AutostartEntry>(
            AutostartEntry::Place::standard(desktopEntry()), application(), QCoreApplication::applicationFilePath());
    }

    /// X servers under Wayland hear only the keys that are typed into their own windows.
    std::unique_ptr<GlobalShortcut> makeShortcut(MainLoop& mainLoop)
    {
        if (isWaylandSession())
            return std::make_unique<PortalShortcut>(mainLoop, desktopEntry());
        return std::make_unique<X11Shortcut>(mainLoop);
    }

    /// What the platform consists of here; the platform owns them.
    struct Members {
        UPower* upower = nullptr;
        LinuxPowerSource* power = nullptr;
        LinuxThermal* thermal = nullptr;
        LinuxLid* lid = nullptr;
        LogindSleep* sleep = nullptr;
        LinuxAssertions* assertions = nullptr;

        void readAgainAfterSleep() const
        {
            power->didSleep();
            upower->refresh();
            power->refresh();
            lid->refresh();
            thermal->refresh();
            assertions->verify();
        }
    };

    class LinuxSession final : public SessionFollowing {
    public:
        explicit LinuxSession(Members members)
            : members_{members}
        {
        }

        void sessionRuns(bool runs) override
        {
            members_.power->sessionRuns(runs);
            members_.thermal->sessionRuns(runs);
            members_.lid->sessionRuns(runs);
            members_.sleep->sessionRuns(runs);
        }
        void refresh() override { members_.thermal->refresh(); }

    private:
        Members members_;
    };

    template <class Member> auto own(Member*& slot, std::unique_ptr<Member> member)
    {
        slot = member.get();
        return member;
    }

} // namespace

PlatformKind systemPlatformKind() { return PlatformKind::linux; }

std::expected<void, std::string> powerManagerAnswers()
{
    if (dbus::isOwned(dbus::systemBus(), logind::manager().service))
        return {};
    return std::unexpected{"No power manager answers on the system bus."};
}

PlatformTime makePlatformTime()
{
    return {.mainLoop = std::make_unique<QtMainLoop>(),
        .clock = std::make_unique<SystemClock>(),
        .deadlines = std::make_unique<TimerfdDeadlineScheduler>(),
        .tasks = std::make_unique<TimerfdTaskScheduler>()};
}

std::expected<Platform, std::string> makeSystemPlatform()
{
    if (!dbus::systemBus().isConnected())
        return std::unexpected{"The system bus does not answer."};
    Platform platform;
    platform.kind = PlatformKind::linux;
    platform.time = makePlatformTime();
    auto& tasks = *platform.time.tasks;
    const auto upower = std::make_shared<UPower>();
    const auto members = std::make_shared<Members>(Members{.upower = upower.get()});
    platform.power = own(members->power, std::make_unique<LinuxPowerSource>(upower, tasks, sysfsRoot));
    platform.thermal = own(members->thermal, std::make_unique<LinuxThermal>(*platform.power, tasks, sysfsRoot));
    platform.lid = own(members->lid, std::make_unique<LinuxLid>(upower, tasks, sysfsRoot));
    platform.sleep = own(members->sleep,
        std::make_unique<LogindSleep>(*platform.time.mainLoop,
            logindLock("sleep", "delay", tasks),
            Brand::appName() + ": ending the session before the computer sleeps",
            [members] { members->readAgainAfterSleep(); }));
    platform.assertions = own(members->assertions, std::make_unique<LinuxAssertions>(means(tasks)));
    platform.display = std::make_unique<LinuxDisplay>(tasks, assertionsLog());
    platform.session = std::make_unique<LinuxSession>(*members);
    platform.notifications = std::make_unique<DesktopNotifications>(application(), desktopEntry(), notificationsLog());
    platform.alarm = std::make_unique<ProcessSoundPlayer>(resourceFile(heatAlarmSound),
        ProcessSoundPlayer::systemPrograms(),
        *platform.time.mainLoop,
        notificationsLog());
    platform.login = makeLoginService();
    platform.shortcut = makeShortcut(*platform.time.mainLoop);
    platform.appearance = std::make_unique<PortalAppearance>();
    platform.updater = makeFeedUpdater(tasks, *platform.time.clock);
    platform.helper = makeLinuxHelper();
    return platform;
}

} // namespace vespra
