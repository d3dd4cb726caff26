#include "Helper/linux/HelperProgram.h"

#include "Helper/LedgerFile.h"
#include "Helper/linux/BusService.h"
#include "Helper/linux/Logind.h"
#include "Helper/linux/PolkitAuthorization.h"
#include "HelperProtocol/Brand.h"

#include <csignal>
#include <systemd/sd-daemon.h>

namespace vespra {

namespace {

    /// How long anything but a person may take to answer. Several calls in a row stay within what the watchdog allows.
    constexpr std::uint64_t replyLimit = 5'000'000; // microseconds

    std::expected<std::pair<Event, Bus>, std::string> connect()
    {
        sd_event* loop = nullptr;
        if (const int made = sd_event_default(&loop); made < 0)
            return std::unexpected{systemError(made)};
        Event event{loop};
        sigset_t ending;
        sigemptyset(&ending);
        for (const int number : {SIGTERM, SIGINT})
            sigaddset(&ending, number);
        sigprocmask(SIG_BLOCK, &ending, nullptr);
        for (const int number : {SIGTERM, SIGINT})
            sd_event_add_signal(loop, nullptr, number, nullptr, nullptr);
        sd_bus* connected = nullptr;
        int result = sd_bus_open_system(&connected);
        Bus bus{connected};
        if (result >= 0)
            result = sd_bus_set_exit_on_disconnect(connected, 1);
        if (result >= 0)
            result = sd_bus_set_method_call_timeout(connected, replyLimit);
        if (result >= 0)
            result = sd_bus_attach_event(connected, loop, SD_EVENT_PRIORITY_NORMAL);
        if (result < 0)
            return std::unexpected{"bus système : " + systemError(result)};
        return std::pair{std::move(event), std::move(bus)};
    }

    /// Ends the loop when there has been nothing to do for a while, and nobody calls at the last moment.
    class IdleExit {
    public:
        IdleExit(sd_event& event, TaskScheduling& tasks, Seconds timeout, BusService& service)
            : event_{event}
            , tasks_{tasks}
            , timeout_{timeout}
            , service_{service}
        {
        }
        void update(bool isIdle)
        {
            task_.reset();
            if (isIdle)
                task_ = tasks_.schedule(timeout_, [this] {
                    if (service_.withdraw())
                        sd_event_exit(&event_, EXIT_SUCCESS);
                });
        }

    private:
        sd_event& event_;
        TaskScheduling& tasks_;
        Seconds timeout_;
        BusService& service_;
        std::unique_ptr<ScheduledTask> task_;
    };

    int serve(sd_event& event, sd_bus& bus, const HelperProgramOptions& options, const SystemLog& log)
    {
        const auto giveUp = [&](const std::string& reason) {
            log.error("Démarrage impossible : " + reason);
            return EXIT_FAILURE;
        };
        if (const auto isOnlyOne = BusService::takeName(bus); !isOnlyOne)
            return giveUp(isOnlyOne.error());
        EventTaskScheduler tasks{event};
        SystemClock clock;
        LedgerFile ledger{options.stateDirectory};
        // Without the lock nothing is in force: ending the process is what every client notices at once.
        LogindSleepSetting setting{bus, [&](const std::string& reason) {
                                       log.error("Verrou perdu : " + reason);
                                       sd_event_exit(&event, EXIT_FAILURE);
                                   }};
        LogindPower power{bus};
        PolkitAuthorization authorization{bus};
        HelperDaemon daemon{{setting, ledger, power, authorization, tasks, clock}, options.leaseTimeout};
        BusService service{bus, daemon};
        IdleExit idle{event, tasks, options.idleTimeout, service};
        daemon.onChange = service.onRequest = [&] { idle.update(daemon.isIdle()); };
        const auto sleepSlot = power.onPrepareForSleep([&] { daemon.systemWillSleep(); });
        if (const auto published = service.publish(); !published) {
            daemon.onChange = nullptr;
            return giveUp(published.error());
        }
        idle.update(daemon.isIdle());
        sd_event_set_watchdog(&event, 1);
        sd_notify(0, "READY=1");
        const int ended = sd_event_loop(&event);
        sd_notify(0, "STOPPING=1");
        daemon.onChange = service.onRequest = nullptr;
        return ended < 0 ? EXIT_FAILURE : ended;
    }

} // namespace

int runHelper(const HelperProgramOptions& options)
{
    const SystemLog log{Brand::appBundleID(), "helper"};
    const auto connected = connect();
    if (!connected) {
        log.error("Démarrage impossible : " + connected.error());
        return EXIT_FAILURE;
    }
    const auto& [event, bus] = *connected;
    return serve(*event, *bus, options, log);
}

} // namespace vespra
