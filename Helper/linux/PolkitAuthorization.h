#pragma once

#include "Helper/HelperDaemon.h"
#include "Helper/linux/Logind.h"

#include <map>

namespace vespra {

/// Asks polkit about the caller's connection: never about its process, whose number may be another's by then. Sleep and
/// shutdown go by logind's own rules, so that nobody may do here what they may not do there: while other users are
/// logged in, that takes a separate right.
class PolkitAuthorization final : public Authorization {
public:
    explicit PolkitAuthorization(sd_bus& bus);
    ~PolkitAuthorization() override;
    void check(const ClientName& client, Right right, Interaction interaction,
        std::function<void(const Verdict&)> answer) override;

private:
    struct Question;
    bool hasCompany(const ClientName& client) const;
    const char* action(const ClientName& client, Right right) const;
    static int answered(sd_bus_message* reply, void* userdata, sd_bus_error*);

    sd_bus& bus_;
    std::map<const Question*, std::unique_ptr<Question>> questions_;
};

} // namespace vespra
