#pragma once

#include "ControlProtocol/ControlRequest.h"
#include "Core/Coding/JSON.h"
#include "HelperProtocol/FileDescriptor.h"

#include <optional>

namespace vespra {

/// A program's connection to the running application. Blocks; one thread at a time, but `receive` may wait in another.
class ControlClient {
public:
    static constexpr Seconds usualLimit = 5s;

    /// False if no application answers, with the reason in `errno`.
    bool connect(const std::string& path = controlProtocol::defaultPath());
    /// False if the application has gone or does not take it within five seconds.
    bool send(const ControlRequest& request);
    /// The next line; absent once the application has gone, or after `limit`, if there is one: then `errno` is
    /// ETIMEDOUT; or once nobody can read what is written to the descriptor `output`, if one is given.
    std::optional<JSON> receive(std::optional<Seconds> limit = usualLimit, int output = none);

private:
    static constexpr int none = -1;

    bool waitToRead(std::optional<Seconds> limit, int output) const;

    FileDescriptor socket_;
    std::string received_;
};

} // namespace vespra
