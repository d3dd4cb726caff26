#include "App/Agents/HookTexts.h"

namespace vespra::hookTexts {

std::string_view message(HookSettingsFile::Failure failure)
{
    switch (failure) {
    case HookSettingsFile::Failure::agentNotFound:
        return "This agent isn't installed on this Mac.";
    case HookSettingsFile::Failure::unreadableSettings:
        return "Its settings file couldn't be read, so it was left untouched. Fix the file, then try again.";
    case HookSettingsFile::Failure::writeFailed:
        break;
    }
    return "The settings file couldn't be written. Check its permissions, then try again.";
}

std::string_view label(HookSettingsFile::Connection connection)
{
    switch (connection) {
    case HookSettingsFile::Connection::agentNotFound:
        return "Not installed";
    case HookSettingsFile::Connection::notConnected:
        return "Not connected";
    case HookSettingsFile::Connection::connected:
        return "Connected";
    case HookSettingsFile::Connection::modified:
        break;
    }
    return "Changed by hand";
}

} // namespace vespra::hookTexts
