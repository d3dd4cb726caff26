#pragma once

#include <QSocketNotifier>

#include <functional>

namespace vespra {

/// Brings SIGINT, SIGTERM and SIGHUP to the main loop, except for those that were ignored when the program started, as
/// SIGHUP is after nohup. One at a time in a process.
class TerminationSignals {
public:
    /// `onSignal` runs on the main thread, once for all signals that came together, with the first of them.
    explicit TerminationSignals(std::function<void(int signal)> onSignal);
    /// The signals end the process again.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vespra
