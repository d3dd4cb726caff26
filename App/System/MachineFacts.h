#pragma once

#include <functional>

namespace vespra {

/// What closed-lid mode needs of the machine and of this build, whatever the user does.
class MachineFacts {
public:
    virtual ~MachineFacts() = default;

    struct Reading {
        bool hasLid = false;
        /// Signed by the product's own team. Always true on a system that does not sign programs.
        bool isSignedByOwnTeam = false;
    };
    /// Answers on the main thread in a later turn, and not after the facts have been destroyed.
    virtual void read(std::function<void(Reading)> answer) = 0;
};

} // namespace vespra
