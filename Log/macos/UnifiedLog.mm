#include "Log/SystemLog.h"

#import <os/log.h>

namespace vespra {

namespace {

    os_log_type_t type(SystemLog::Level level)
    {
        switch (level) {
        case SystemLog::Level::info:
            return OS_LOG_TYPE_INFO;
        case SystemLog::Level::notice:
            return OS_LOG_TYPE_DEFAULT;
        case SystemLog::Level::error:
            return OS_LOG_TYPE_ERROR;
        case SystemLog::Level::fault:
            break;
        }
        return OS_LOG_TYPE_FAULT;
    }

} // namespace

void writeToSystemLog(const SystemLog::Entry& entry)
{
    const std::string subsystem{entry.subsystem}, category{entry.category}, message{entry.message};
    // os_log_create gives the same object again for the same names.
    os_log_t log = os_log_create(subsystem.c_str(), category.c_str());
    os_log_with_type(log, type(entry.level), "%{public}s", message.c_str());
}

} // namespace vespra
