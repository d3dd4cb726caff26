#pragma once

#include "Core/Agents/HookInstaller.h"
#include "Core/Files/FileSystem.h"
#include "Core/RawValue.h"
#include "Core/Scheduling/Instant.h"

namespace vespra {

/// An agent's settings file, in which our hooks are put and from which they are taken. What the file was is always
/// either in it or in a backup; it is replaced at once, keeps its mode and owner, and stays a symbolic link if it is
/// one. Several may connect at once. Directories are made for the user only, like the files in `workDirectory`.
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
    /// Where the record of what was written and the backups are; an absolute path.
    std::filesystem::path workDirectory;
    /// The agent's raw value, which the names of record and backups begin with.
    std::string name;
    FileSystem* files = &systemFiles();

    Connection connection() const;
    /// Adds what is missing of our hooks. Changes nothing where nothing is missing.
    std::expected<void, Failure> connect(Instant now) const;
    /// Puts back what was before connecting if nothing has changed the file since; otherwise takes our hooks out of it.
    /// Nothing to do, and no failure, where there is no readable file or it holds no hook of ours.
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
