#pragma once

#include "HelperProtocol/FileDescriptor.h"

#include <string>

namespace vespra {

/// Whether this is the user's only running application. The claim ends with the process, however that ends.
class SingleInstance {
public:
    enum class Claim {
        mine,
        /// Another process has it.
        taken,
        /// The file cannot be made: nobody can have it.
        impossible,
    };

    /// Claims the file at `path`, whose folder is made (0700) if need be.
    explicit SingleInstance(const std::string& path);

    Claim claim() const { return claim_; }

    /// "vespra.lock" in the support folder.
    static std::string defaultPath();

private:
    FileDescriptor file_;
    Claim claim_;
};

/// Asks the application that has the claim to show itself, and waits for it at most two seconds, as it may be starting.
/// False if it did not answer. Any thread.
bool showRunningApplication(const std::string& controlPath);

} // namespace vespra
