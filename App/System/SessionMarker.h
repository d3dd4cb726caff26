#pragma once

#include "HelperProtocol/FileDescriptor.h"

#include <optional>
#include <string>

namespace vespra {

/// A file that is locked exactly while a session runs, so that another program can tell. The kernel unlocks it when the
/// process goes, however that ends. Main thread only.
class SessionMarker {
public:
    struct Session {
        long pid = 0;
        /// The raw value of its PlatformKind.
        std::string platform;
    };

    SessionMarker(std::string path, std::string platform)
        : path_{std::move(path)}
        , platform_{std::move(platform)}
    {
    }

    /// May be told the same again. A file that cannot be locked, or is locked by another session, changes nothing.
    void sessionRuns(bool runs);

    /// The session that has locked the file at `path`; absent if none does.
    static std::optional<Session> read(const std::string& path);
    /// "session.lock" in the support folder.
    static std::string defaultPath();

private:
    std::string path_;
    std::string platform_;
    FileDescriptor lock_;
};

} // namespace vespra
