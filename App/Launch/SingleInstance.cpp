#include "App/Launch/SingleInstance.h"

#include "ControlProtocol/ControlClient.h"
#include "HelperProtocol/Brand.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sys/file.h>
#include <thread>

namespace vespra {

SingleInstance::SingleInstance(const std::string& path)
{
    std::error_code ignored;
    const auto folder = std::filesystem::path{path}.parent_path();
    if (std::filesystem::create_directories(folder, ignored))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    file_ = FileDescriptor{open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)};
    if (file_ && flock(file_.get(), LOCK_EX | LOCK_NB) == 0)
        claim_ = Claim::mine;
    else
        claim_ = file_ && errno == EWOULDBLOCK ? Claim::taken : Claim::impossible;
}

std::string SingleInstance::defaultPath() { return Brand::applicationSupportDirectory() + "/vespra.lock"; }

bool showRunningApplication(const std::string& controlPath)
{
    constexpr int tries = 20;
    for (int count = 0; count < tries; ++count) {
        ControlClient client;
        if (client.connect(controlPath) && client.send({.verb = ControlVerb::showPanel}))
            return client.receive().has_value();
        std::this_thread::sleep_for(std::chrono::milliseconds{100});
    }
    return false;
}

} // namespace vespra
