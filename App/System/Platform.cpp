#include "App/System/Platform.h"

#include "App/System/SessionMarker.h"
#include "App/System/simulated/MachineProtocol.h"
#include "App/System/simulated/MachineSocket.h"
#include "App/System/simulated/SimulatedPlatform.h"
#include "App/System/SystemPlatform.h"

namespace vespra {

namespace {

    /// Also marks the running session for other programs.
    class MarkedSession final : public SessionFollowing {
    public:
        MarkedSession(std::unique_ptr<SessionFollowing> session, PlatformKind kind)
            : session_{std::move(session)}
            , marker_{SessionMarker::defaultPath(), std::string{rawValue(kind)}}
        {
        }

        void sessionRuns(bool runs) override
        {
            session_->sessionRuns(runs);
            marker_.sessionRuns(runs);
        }
        void refresh() override { session_->refresh(); }

    private:
        std::unique_ptr<SessionFollowing> session_;
        SessionMarker marker_;
    };

    Platform makeSteeredLaptop()
    {
        auto platform = makeSimulatedPlatform();
        platform.machineSocket = std::make_shared<MachineSocket>(
            platform.machine, *platform.time.mainLoop, machineProtocol::defaultPath());
        return platform;
    }

    std::expected<Platform, std::string> choosePlatform(std::optional<PlatformKind> kind)
    {
        if (kind == PlatformKind::simulated)
            return makeSteeredLaptop();
        if (kind && *kind != systemPlatformKind())
            return std::unexpected{"This build runs on " + std::string{rawValue(systemPlatformKind())} + ", not on "
                + std::string{rawValue(*kind)} + "."};
        if (!kind)
            if (const auto answers = powerManagerAnswers(); !answers) {
                auto platform = makeSteeredLaptop();
                platform.notice = answers.error() + " Running on a simulated laptop.";
                return platform;
            }
        return makeSystemPlatform();
    }

} // namespace

std::expected<Platform, std::string> makePlatform(std::optional<PlatformKind> kind)
{
    auto platform = choosePlatform(kind);
    if (platform)
        platform->session = std::make_unique<MarkedSession>(std::move(platform->session), platform->kind);
    return platform;
}

} // namespace vespra
