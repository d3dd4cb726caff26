#include "App/System/Platform.h"

#include "App/System/simulated/SimulatedPlatform.h"
#include "App/System/SystemPlatform.h"

namespace vespra {

std::expected<Platform, std::string> makePlatform(std::optional<PlatformKind> kind)
{
    if (kind == PlatformKind::simulated)
        return makeSimulatedPlatform();
    if (kind && *kind != systemPlatformKind())
        return std::unexpected{"This build runs on " + std::string{rawValue(systemPlatformKind())} + ", not on "
            + std::string{rawValue(*kind)} + "."};
    if (!kind)
        if (const auto answers = powerManagerAnswers(); !answers) {
            auto platform = makeSimulatedPlatform();
            platform.notice = answers.error() + " Running on a simulated laptop.";
            return platform;
        }
    return makeSystemPlatform();
}

} // namespace vespra
