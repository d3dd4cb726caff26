#pragma once

namespace vespra {

/// Told by the application whether a session runs: what costs wake-ups or locks happens only then. Main thread only.
class SessionFollowing {
public:
    virtual ~SessionFollowing() = default;
    /// May be told the same again.
    virtual void sessionRuns(bool runs) = 0;
    /// Reads again what is not followed while no session runs, such as the temperature: before a start and when the
    /// readings are shown. Changes arrive through each monitor's `onChange` before this returns.
    virtual void refresh() = 0;
};

} // namespace vespra
