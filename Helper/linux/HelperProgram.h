#pragma once

#include "Core/Scheduling/Instant.h"

#include <string>

namespace vespra {

struct HelperProgramOptions {
    /// Where the ledger is kept.
    std::string stateDirectory;
    Seconds leaseTimeout;
    /// How long to stay without anything to do.
    Seconds idleTimeout;
};

/// Runs the daemon on the system bus until it has nothing to do or is told to end. The program's exit status; what went
/// wrong is in the log.
int runHelper(const HelperProgramOptions& options);

} // namespace vespra
