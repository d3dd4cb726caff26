#include "Log/SystemLog.h"

namespace vespra {

namespace {

    std::function<void(const SystemLog::Entry&)>& redirection()
    {
        static std::function<void(const SystemLog::Entry&)> sink;
        return sink;
    }

} // namespace

SystemLog::SystemLog(std::string subsystem, std::string category)
    : subsystem_{std::move(subsystem)}
    , category_{std::move(category)}
{
}

void SystemLog::redirect(std::function<void(const Entry&)> sink) { redirection() = std::move(sink); }

void SystemLog::write(Level level, std::string_view message) const
{
    const Entry entry{.subsystem = subsystem_, .category = category_, .level = level, .message = message};
    if (const auto& sink = redirection())
        sink(entry);
    else
        writeToSystemLog(entry);
}

} // namespace vespra
