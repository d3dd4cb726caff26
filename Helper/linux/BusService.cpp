#include "Helper/linux/BusService.h"

#include "HelperProtocol/linux/InstallationNames.h"

namespace vespra {

struct BusService::Client {
    BusService& service;
    std::string name;
    std::unique_ptr<HelperXPCProtocol> session;
    std::unique_ptr<sd_bus_track, Unref<sd_bus_track_unref>> track;
};

namespace {

    int answer(sd_bus_message& call, std::int64_t value) { return sd_bus_reply_method_return(&call, "x", value); }
    int answer(sd_bus_message& call, bool value) { return sd_bus_reply_method_return(&call, "b", value); }
    int answer(sd_bus_message& call, const HelperRefusal& refusal)
    {
        if (!refusal)
            return sd_bus_reply_method_return(&call, "");
        return sd_bus_reply_method_errorf(&call, installation::refusedError, "%s", refusal->c_str());
    }

} // namespace

struct BusService::WaitingCall {
    BusMessage message;
    sd_bus_message_handler_t serve;
};

struct BusService::Methods {
    template <auto operation> static int serve(sd_bus_message* call, void* userdata, sd_bus_error*)
    {
        auto& service = *static_cast<BusService*>(userdata);
        if (!service.waiting_)
            return start(*call, service, operation);
        service.waiting_->push_back({BusMessage{sd_bus_message_ref(call)}, &serve<operation>});
        return 1;
    }

    template <class Value>
    static int start(
        sd_bus_message& call, BusService& service, void (HelperXPCProtocol::*operation)(HelperReply<Value>))
    {
        notify(service.onRequest);
        auto* const session = service.client(sd_bus_message_get_sender(&call));
        if (!session)
            return 1;
        const std::shared_ptr<sd_bus_message> held{sd_bus_message_ref(&call), Unref<sd_bus_message_unref>{}};
        (session->*operation)([held](const std::expected<Value, HelperUnreachable>& value) {
            if (value)
                answer(*held, *value);
        });
        return 1;
    }

    static constexpr sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD(
            "ProtocolVersion", "", "x", serve<&HelperXPCProtocol::protocolVersion>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD(
            "EnableClosedLid", "", "", serve<&HelperXPCProtocol::enableClosedLid>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Heartbeat", "", "b", serve<&HelperXPCProtocol::heartbeat>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("RestoreSleep", "", "", serve<&HelperXPCProtocol::restoreSleep>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("SleepNow", "", "", serve<&HelperXPCProtocol::sleepNow>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ShutDown", "", "", serve<&HelperXPCProtocol::shutDown>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    };
};

BusService::BusService(sd_bus& bus, HelperDaemon& daemon)
    : bus_{bus}
    , daemon_{daemon}
{
}

BusService::~BusService() = default;

HelperResult BusService::publish()
{
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_object_vtable(
        &bus_, &slot, installation::objectPath, installation::interface, Methods::table, this);
    object_.reset(slot);
    if (result < 0)
        return std::unexpected{systemError(result)};
    return {};
}

HelperResult BusService::takeName(sd_bus& bus)
{
    const int result = sd_bus_request_name(&bus, installation::busName, 0);
    if (result < 0)
        return std::unexpected{std::string{installation::busName} + " : " + systemError(result)};
    return {};
}

bool BusService::withdraw()
{
    waiting_.emplace();
    sd_bus_release_name(&bus_, installation::busName);
    while (sd_bus_process(&bus_, nullptr) > 0) {
    }
    const auto calls = *std::exchange(waiting_, std::nullopt);
    const bool stays = !calls.empty() && takeName(bus_);
    for (const auto& call : calls)
        if (stays)
            call.serve(call.message.get(), this, nullptr);
        else
            sd_bus_reply_method_errorf(call.message.get(), SD_BUS_ERROR_DISCONNECTED, "%s", "the helper has ended");
    return !stays;
}

HelperXPCProtocol* BusService::client(const char* name)
{
    if (const auto known = clients_.find(name); known != clients_.end())
        return known->second->session.get();
    auto client = std::make_unique<Client>(*this, name);
    const auto gone = [](sd_bus_track*, void* userdata) {
        auto& left = *static_cast<Client*>(userdata);
        left.service.clients_.erase(std::string{left.name});
        return 0;
    };
    sd_bus_track* track = nullptr;
    if (sd_bus_track_new(&bus_, &track, gone, client.get()) < 0)
        return nullptr;
    client->track.reset(track);
    if (sd_bus_track_add_name(track, name) < 0)
        return nullptr;
    client->session = daemon_.clientSession(name);
    return (clients_[name] = std::move(client))->session.get();
}

} // namespace vespra
