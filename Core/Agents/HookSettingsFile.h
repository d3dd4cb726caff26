#pragma once

#include "Core/Agents/HookInstaller.h"
#include "Core/Files/FileSystem.h"
#include "Core/RawValue.h"
#include "Core/Scheduling/Instant.h"

namespace vespra {

/// Adds our hooks to an agent's settings file and removes them again. The previous content is never lost: it is in the
/// file or in a backup. The file is replaced atomically, keeps its mode and owner, and stays a symbolic link if it is
/// one. Several processes may connect at once. New directories, and the files in `workDirectory`, are accessible to the
/// user only.
struct HookSettingsFile {
    enum class Connection {
        agentNotFound, // no directory for the file
        notConnected,
        connected,
        modified // some of our hooks are missing, or the file is not JSON
    };
    enum class Failure {
        agentNotFound,
        unreadableSettings, // not UTF-8, not JSON, or not of the expected form; nothing has been written
        writeFailed // also: the file cannot be opened, or somebody else keeps changing it
    };

    /// An absolute path, such as "/home/someone/.claude/settings.json".
    std::filesystem::path file;
    HookInstaller installer;
    /// Holds the record of what was written, and the backups; an absolute path.
    std::filesystem::path workDirectory;
    /// The agent's raw value; the names of the record and the backups begin with it.
    std::string name;
    FileSystem* files = &systemFiles();

    Connection connection() const;
    /// Adds those of our hooks that are missing; changes nothing if none is.
    std::expected<void, Failure> connect(Instant now) const;
    /// Restores what was there before connecting if nobody has changed the file since; otherwise removes only our
    /// hooks. Succeeds without doing anything where there is no readable file or it holds no hook of ours.
    std::expected<void, Failure> disconnect(Instant now) const;

private:
    /// The file as it was read.
    struct Snapshot {
        std::filesystem::path place; // behind all links
        std::optional<FileContents> contents; // absent: no file
        /// Absent without a file, or if it is not UTF-8.
        std::optional<std::string> text() const;
        bool operator==(const Snapshot&) const = default;
    };
    struct Record;
    enum class Outcome { done, changedMeanwhile };
    using Attempt = std::expected<Outcome, Failure>;

    std::optional<Snapshot> snapshot() const;
    Attempt comparison(const Snapshot& before) const;
    std::expected<void, Failure> repeated(auto attempt) const;

    Attempt tryToConnect(Instant now) const;
    Attempt tryToDisconnect(Instant now) const;
    Attempt takeOut(const Snapshot& before, const std::string& text, Instant now) const;
    Attempt replace(const Snapshot& before, std::string_view text) const;
    Attempt remove(const Snapshot& before) const;
    bool backUp(const Snapshot& before, Instant now) const;

    std::filesystem::path recordFile() const { return workDirectory / (name + ".json"); }
    bool write(const Record& record) const;
    std::optional<Record> record() const;
};

template <>
inline constexpr auto rawValues<HookSettingsFile::Connection> = RawValueTable<HookSettingsFile::Connection, 4>{{
    {HookSettingsFile::Connection::agentNotFound, "agentNotFound"},
    {HookSettingsFile::Connection::notConnected, "notConnected"},
    {HookSettingsFile::Connection::connected, "connected"},
    {HookSettingsFile::Connection::modified, "modified"},
}};

} // namespace vespra
