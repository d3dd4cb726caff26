#pragma once

#include "Log/SystemLog.h"

#include <string>
#include <vector>

namespace vespra {

/// What is logged while it lives, which the system's log does not see.
class RecordedLog {
public:
    RecordedLog()
    {
        SystemLog::redirect([this](const SystemLog::Entry& entry) { messages.emplace_back(entry.message); });
    }
    ~RecordedLog() { SystemLog::redirect({}); }
    RecordedLog(const RecordedLog&) = delete;
    RecordedLog& operator=(const RecordedLog&) = delete;

    std::vector<std::string> messages;
};

} // namespace vespra
