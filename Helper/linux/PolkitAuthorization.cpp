#include "Helper/linux/PolkitAuthorization.h"

#include "HelperProtocol/linux/InstallationNames.h"

namespace vespra {

namespace {

    constexpr std::uint32_t allowUserInteraction = 1;
    /// A person may be typing a password.
    constexpr std::uint64_t personLimit = 110'000'000; // microseconds
    constexpr std::uint64_t busLimit = 0; // as for every call on this bus

    /// Absent if the client has gone.
    std::optional<uid_t> user(sd_bus& bus, const ClientName& client)
    {
        sd_bus_creds* asked = nullptr;
        if (sd_bus_get_name_creds(&bus, client.c_str(), SD_BUS_CREDS_EUID, &asked) < 0)
            return {};
        const std::unique_ptr<sd_bus_creds, Unref<sd_bus_creds_unref>> credentials{asked};
        uid_t found = 0;
        if (sd_bus_creds_get_euid(credentials.get(), &found) < 0)
            return {};
        return found;
    }

    /// Leaves the details at the end unread: polkit tells there how it came to its verdict.
    int readVerdict(sd_bus_message& reply, int& isAuthorized, int& isChallenge)
    {
        const int entered = sd_bus_message_enter_container(&reply, 'r', "bba{ss}");
        return entered < 0 ? entered : sd_bus_message_read(&reply, "bb", &isAuthorized, &isChallenge);
    }

    Authorization::Verdict denied(Authorization::Denial::Reason reason, const std::string& description)
    {
        return std::unexpected{Authorization::Denial{reason, description}};
    }

} // namespace

struct PolkitAuthorization::Question {
    PolkitAuthorization& owner;
    std::function<void(const Verdict&)> answer;
    BusSlot slot;
};

PolkitAuthorization::PolkitAuthorization(sd_bus& bus)
    : bus_{bus}
{
}

PolkitAuthorization::~PolkitAuthorization() = default;

/// Whether somebody else is logged in, as far as one can tell.
bool PolkitAuthorization::hasCompany(const ClientName& client) const
{
    const auto own = user(bus_, client);
    return !own || LogindManager{bus_}.hasSessionsOfOthers(*own);
}

const char* PolkitAuthorization::action(const ClientName& client, Right right) const
{
    switch (right) {
    case Right::closedLid:
        return installation::polkitAction;
    case Right::sleep:
        return hasCompany(client) ? "org.freedesktop.login1.suspend-multiple-sessions"
                                  : "org.freedesktop.login1.suspend";
    case Right::shutDown:
        break;
    }
    return hasCompany(client) ? "org.freedesktop.login1.power-off-multiple-sessions"
                              : "org.freedesktop.login1.power-off";
}

void PolkitAuthorization::check(
    const ClientName& client, Right right, Interaction interaction, std::function<void(const Verdict&)> answer)
{
    const bool mayAsk = interaction == Interaction::allowed;
    auto question = std::make_unique<Question>(*this, std::move(answer));
    auto* const key = question.get();
    sd_bus_message* made = nullptr;
    sd_bus_slot* slot = nullptr;
    int result = sd_bus_message_new_method_call(&bus_,
        &made,
        "org.freedesktop.PolicyKit1",
        "/org/freedesktop/PolicyKit1/Authority",
        "org.freedesktop.PolicyKit1.Authority",
        "CheckAuthorization");
    const BusMessage message{made};
    if (result >= 0)
        result = sd_bus_message_append(made,
            "(sa{sv})sa{ss}us",
            "system-bus-name",
            1,
            "name",
            "s",
            client.c_str(),
            action(client, right),
            0,
            mayAsk ? allowUserInteraction : 0,
            "");
    if (result >= 0)
        result = sd_bus_call_async(
            &bus_, &slot, made, &PolkitAuthorization::answered, key, mayAsk ? personLimit : busLimit);
    if (result < 0)
        return question->answer(denied(Denial::Reason::unanswered, "polkit : " + systemError(result)));
    question->slot.reset(slot);
    questions_.emplace(key, std::move(question));
}

int PolkitAuthorization::answered(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    using Reason = Denial::Reason;
    auto& owner = static_cast<Question*>(userdata)->owner;
    const auto question = owner.questions_.extract(static_cast<const Question*>(userdata));
    const auto& answer = question.mapped()->answer;
    int isAuthorized = 0, isChallenge = 0;
    if (const auto* error = sd_bus_message_get_error(reply))
        answer(denied(Reason::unanswered, "polkit : " + std::string{error->message ? error->message : error->name}));
    else if (const int read = readVerdict(*reply, isAuthorized, isChallenge); read < 0)
        answer(denied(Reason::unanswered, "polkit : " + systemError(read)));
    else if (!isAuthorized)
        answer(denied(isChallenge ? Reason::needsAuthentication : Reason::denied, "polkit ne l'autorise pas"));
    else
        answer({});
    return 1;
}

} // namespace vespra
