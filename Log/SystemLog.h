#pragma once

// Log: the system's log and standard error, for every program. Knows nothing else of the project.

#include <functional>
#include <string>
#include <string_view>

namespace vespra {

/// Diagnostics of one component, in French: on macOS to the unified log, on Linux to the journal with the same fields,
/// without either to standard error. Any thread.
class SystemLog {
public:
    enum class Level { info, notice, error, fault };

    /// `subsystem` is the application's bundle identifier; `category` names the component, such as "agents".
    SystemLog(std::string subsystem, std::string category);

    void info(std::string_view message) const { write(Level::info, message); }
    void notice(std::string_view message) const { write(Level::notice, message); }
    void error(std::string_view message) const { write(Level::error, message); }

    struct Entry {
        std::string_view subsystem;
        std::string_view category;
        Level level;
        std::string_view message;
    };
    /// Sends every entry of the process to `sink` instead, from whatever thread writes it; empty puts the system's log
    /// back. For tests, before other threads run.
    static void redirect(std::function<void(const Entry&)> sink);

private:
    void write(Level level, std::string_view message) const;

    std::string subsystem_;
    std::string category_;
};

/// Hands one entry to the system's log. One per system.
void writeToSystemLog(const SystemLog::Entry& entry);

} // namespace vespra
