#include "Helper/linux/PolkitAuthorization.h"

#include "HelperProtocol/linux/InstallationNames.h"

namespace vespra {

namespace {

    constexpr std::uint32_t allowUserInteraction = 1;
    /// A person may be typing a password.
    constexpr std::uint64_t timeout = 110'000'000; // microseconds

    const char* action(Authorization::Right right)
    {
        switch (right) {
        case Authorization::Right::closedLid:
            return installation::polkitAction;
        case Authorization::Right::sleep:
            return "org.freedesktop.login1.suspend";
        case Authorization::Right::shutDown:
            break;
        }
        return "org.freedesktop.login1.power-off";
    }

} // namespace

struct PolkitAuthorization::Question {
    PolkitAuthorization& owner;
    std::function<void(HelperResult)> answer;
    BusSlot slot;
};

PolkitAuthorization::PolkitAuthorization(sd_bus& bus)
    : bus_{bus}
{
}

PolkitAuthorization::~PolkitAuthorization() = default;

void PolkitAuthorization::check(const ClientName& client, Right right, std::function<void(HelperResult)> answer)
{
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
            action(right),
            0,
            // Who is there to answer is there when closed-lid mode is switched on, not when the work is done.
            right == Right::closedLid ? allowUserInteraction : 0,
            "");
    if (result >= 0)
        result = sd_bus_call_async(&bus_, &slot, made, &PolkitAuthorization::answered, key, timeout);
    if (result < 0)
        return question->answer(std::unexpected{"polkit : " + systemError(result)});
    question->slot.reset(slot);
    questions_.emplace(key, std::move(question));
}

int PolkitAuthorization::answered(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    auto& owner = static_cast<Question*>(userdata)->owner;
    const auto question = owner.questions_.extract(static_cast<const Question*>(userdata));
    int isAuthorized = 0, isChallenge = 0;
    if (const auto* error = sd_bus_message_get_error(reply))
        question.mapped()->answer(
            std::unexpected{"polkit : " + std::string{error->message ? error->message : error->name}});
    else if (const int read = sd_bus_message_read(reply, "(bba{ss})", &isAuthorized, &isChallenge, 0); read < 0)
        question.mapped()->answer(std::unexpected{"polkit : " + systemError(read)});
    else if (!isAuthorized)
        question.mapped()->answer(std::unexpected{"polkit ne l'autorise pas"});
    else
        question.mapped()->answer({});
    return 1;
}

} // namespace vespra
