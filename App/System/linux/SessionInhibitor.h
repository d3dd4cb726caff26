#pragma once

#include "App/System/linux/DBus.h"
#include "App/System/linux/Inhibition.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Log/SystemLog.h"

#include <map>
#include <optional>
#include <vector>

namespace vespra {

/// A service of the user's session that inhibits, and hands out a cookie for it.
struct InhibitService {
    dbus::Target target;
    /// Whether it takes a window and flags besides the application and the reason.
    std::optional<unsigned> flags;
    QString release;

    static InhibitService sessionManager(unsigned flags);
    static InhibitService powerManagement();
    static InhibitService screenSaver();
};

/// Holds a cookie of the first of several services that is there: never of two at once, and of a better one as soon as
/// it comes. A cookie goes with the process's connection to the bus.
class SessionInhibitor final : public Inhibition {
public:
    /// `services` in the order of preference. `otherwise` is held while none of them is there; it may be empty.
    SessionInhibitor(QString application, std::vector<InhibitService> services, std::unique_ptr<Inhibition> otherwise,
        TaskScheduling& tasks, SystemLog log);

    void hold(const std::string& why) override;
    void drop() override;
    void verify() override;

private:
    static constexpr Seconds retryDelay = 30s;

    struct Candidate {
        InhibitService service;
        /// Absent until the bus has said.
        std::optional<bool> isOwned;
        dbus::Call question;
        std::unique_ptr<dbus::NameWatch> watch;
    };
    struct Held {
        std::size_t candidate;
        /// The bus name of the very process that granted it: the service may have changed hands since.
        QString grantor;
        unsigned cookie;
    };

    void ask(std::size_t candidate);
    void ownerChanged(std::size_t candidate, bool owned);
    void reconcile();
    /// The one to use; absent while that is not known, and if there is none.
    std::optional<std::size_t> best() const;
    void request(std::size_t candidate);
    void received(std::size_t candidate, int question, const QDBusMessage& reply);
    void giveBack(const Held& held);

    QString application_;
    TaskScheduling& tasks_;
    SystemLog log_;
    std::vector<Candidate> candidates_;
    std::unique_ptr<Inhibition> otherwise_;
    /// Absent: not wanted.
    std::optional<std::string> why_;
    std::optional<Held> held_;
    /// The candidate that is being asked for a cookie.
    std::optional<std::size_t> asked_;
    dbus::Call pending_;
    /// Requests to processes that have since lost the service's name: what they still grant is given back.
    std::map<int, dbus::Call> outdated_;
    int question_ = 0;
    bool hasLoggedFailure_ = false;
    std::unique_ptr<ScheduledTask> retry_;
};

} // namespace vespra
