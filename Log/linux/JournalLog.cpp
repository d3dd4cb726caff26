#include "Log/StandardError.h"
#include "Log/SystemLog.h"

// Without this, every entry would name this file as the place it comes from.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <syslog.h>
#include <unistd.h>

namespace vespra {

namespace {

    int priority(SystemLog::Level level)
    {
        switch (level) {
        case SystemLog::Level::info:
            return LOG_INFO;
        case SystemLog::Level::notice:
            return LOG_NOTICE;
        case SystemLog::Level::error:
            return LOG_ERR;
        case SystemLog::Level::fault:
            break;
        }
        return LOG_CRIT;
    }

    bool hasJournal() { return access("/run/systemd/journal/socket", W_OK) == 0; }

    int length(std::string_view text) { return static_cast<int>(text.size()); }

} // namespace

void writeToSystemLog(const SystemLog::Entry& entry)
{
    // Without a journal the library drops entries silently, so its presence is checked first.
    if (hasJournal()
        && sd_journal_send("MESSAGE=%.*s",
               length(entry.message),
               entry.message.data(),
               "PRIORITY=%d",
               priority(entry.level),
               "SUBSYSTEM=%.*s",
               length(entry.subsystem),
               entry.subsystem.data(),
               "CATEGORY=%.*s",
               length(entry.category),
               entry.category.data(),
               nullptr)
            >= 0)
        return;
    std::string line{"["};
    line.append(entry.subsystem).append(":").append(entry.category).append("] ").append(entry.message);
    standardError::write(line);
}

} // namespace vespra
