#pragma once

#include "HelperProtocol/FileDescriptor.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <vector>

namespace vespra {

/// Takes every descriptor that the process may still open. The sanitizer of undefined behaviour needs some when it
/// meets a type of object for the first time, so that all of them must have been in use before.
class DescriptorFamine {
public:
    DescriptorFamine()
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few{.rlim_cur = 128, .rlim_max = before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (int next = open("/dev/null", O_RDONLY); next >= 0; next = open("/dev/null", O_RDONLY))
            taken_.emplace_back(next);
    }
    ~DescriptorFamine() { setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
    std::vector<FileDescriptor> taken_;
};

} // namespace vespra
