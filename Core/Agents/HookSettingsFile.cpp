#include "Core/Agents/HookSettingsFile.h"

#include "Core/Coding/JSONSource.h"
#include "Core/Coding/UTF8.h"
#include "Core/Files/SafeWriting.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace vespra {

/// What connecting found and wrote, so that disconnecting can restore the original.
struct HookSettingsFile::Record {
    std::optional<std::string> original; // absent: there was no file
    std::string written;
};

std::optional<std::string> HookSettingsFile::Snapshot::text() const
{
    return contents && isUTF8(contents->bytes) ? std::optional{contents->bytes} : std::nullopt;
}

/// Absent if the file is there and cannot be read.
std::optional<HookSettingsFile::Snapshot> HookSettingsFile::snapshot() const
{
    auto place = followingLinks(*files, file);
    if (!place)
        return {};
    auto contents = files->read(*place);
    if (!contents)
        return {};
    return Snapshot{.place = *std::move(place), .contents = *std::move(contents)};
}

/// `done` if the file has not changed since `before` was read.
HookSettingsFile::Attempt HookSettingsFile::comparison(const Snapshot& before) const
{
    const auto now = snapshot();
    if (!now)
        return std::unexpected{Failure::writeFailed};
    return *now == before ? Outcome::done : Outcome::changedMeanwhile;
}

HookSettingsFile::Connection HookSettingsFile::connection() const
{
    if (!files->isDirectory(file.parent_path()))
        return Connection::agentNotFound;
    const auto current = snapshot();
    const auto text = current ? current->text() : std::nullopt;
    if (text && !isBlank(*text) && !OrderedJSON::parse(*text))
        return Connection::modified;
    switch (installer.state(text)) {
    case HookInstaller::State::notInstalled:
        return Connection::notConnected;
    case HookInstaller::State::installed:
        return Connection::connected;
    case HookInstaller::State::partial:
        break;
    }
    return Connection::modified;
}

/// Agents write the file too: if it has changed since it was read, the attempt is made again with the new text.
std::expected<void, HookSettingsFile::Failure> HookSettingsFile::repeated(auto attempt) const
{
    constexpr int mostAttempts = 3;
    for (int i = 0; i < mostAttempts; ++i) {
        const auto outcome = attempt();
        if (!outcome)
            return std::unexpected{outcome.error()};
        if (*outcome == Outcome::done)
            return {};
    }
    return std::unexpected{Failure::writeFailed};
}

std::expected<void, HookSettingsFile::Failure> HookSettingsFile::connect(Instant now) const
{
    if (!files->isDirectory(file.parent_path()))
        return std::unexpected{Failure::agentNotFound};
    return repeated([&] { return tryToConnect(now); });
}

HookSettingsFile::Attempt HookSettingsFile::tryToConnect(Instant now) const
{
    const auto before = snapshot();
    // JSON cannot hold the path of a home directory whose name is not UTF-8.
    if (!before || !isUTF8(installer.command))
        return std::unexpected{Failure::writeFailed};
    const auto text = before->text();
    if (before->contents && !text)
        return std::unexpected{Failure::unreadableSettings};
    if (installer.state(text) == HookInstaller::State::installed)
        return Outcome::done;
    const auto installed = installer.installing(text);
    if (!installed)
        return std::unexpected{Failure::unreadableSettings};
    // The record applies only to a file with exactly the text that it names, whoever wrote that. So it can be written
    // first, and processes that connect at the same time cannot invalidate each other's record.
    if (!backUp(*before, now) || !write(Record{.original = text, .written = *installed}))
        return std::unexpected{Failure::writeFailed};
    return replace(*before, *installed);
}

std::expected<void, HookSettingsFile::Failure> HookSettingsFile::disconnect(Instant now) const
{
    return repeated([&] { return tryToDisconnect(now); });
}

HookSettingsFile::Attempt HookSettingsFile::tryToDisconnect(Instant now) const
{
    const auto before = snapshot();
    const auto text = before ? before->text() : std::nullopt;
    if (!text)
        return Outcome::done;

    const auto record = this->record();
    const bool restores
        = record && record->written == *text && !(record->original && installer.holdsOurs(*record->original));
    const auto outcome = !restores ? takeOut(*before, *text, now)
        : record->original         ? replace(*before, *record->original)
                                   : remove(*before);
    // A record that cannot be removed is useless from now on, but harmless.
    if (outcome == Outcome::done)
        static_cast<void>(files->remove(recordFile()));
    return outcome;
}

/// Removes our hooks from `text`, the content of the file. A file without any keeps its layout.
HookSettingsFile::Attempt HookSettingsFile::takeOut(const Snapshot& before, const std::string& text, Instant now) const
{
    const auto uninstalled = installer.uninstalling(text);
    if (!uninstalled)
        return std::unexpected{Failure::unreadableSettings};
    if (!installer.holdsOurs(text))
        return Outcome::done;
    if (!backUp(before, now))
        return std::unexpected{Failure::writeFailed};
    return replace(before, *uninstalled);
}

HookSettingsFile::Attempt HookSettingsFile::replace(const Snapshot& before, std::string_view text) const
{
    const auto attributes = before.contents ? before.contents->attributes : FileAttributes{};
    auto prepared = PreparedFile::beside(*files, before.place, text, attributes);
    if (!prepared)
        return std::unexpected{Failure::writeFailed};
    if (const auto compared = comparison(before); compared != Outcome::done)
        return compared;
    if (!prepared->takePlace())
        return std::unexpected{Failure::writeFailed};
    return Outcome::done;
}

HookSettingsFile::Attempt HookSettingsFile::remove(const Snapshot& before) const
{
    if (const auto compared = comparison(before); compared != Outcome::done)
        return compared;
    if (!files->remove(before.place) || !files->sync(before.place.parent_path()))
        return std::unexpected{Failure::writeFailed};
    return Outcome::done;
}

/// Byte for byte. Backups of the same second all stay, the later ones numbered.
bool HookSettingsFile::backUp(const Snapshot& before, Instant now) const
{
    const auto directory = workDirectory / "backups";
    if (!createDirectories(*files, directory))
        return false;
    if (!before.contents)
        return true;
    auto date = now.iso8601();
    std::ranges::replace(date, ':', '-');
    const auto backup = directory / (name + "-" + file.filename().string() + "-" + date);
    auto prepared = PreparedFile::beside(*files, backup, before.contents->bytes, {});
    if (!prepared)
        return false;
    auto kept = prepared->takePlaceAt(backup);
    constexpr int mostInOneSecond = 1'000;
    for (int i = 2; !kept && kept.error() == std::errc::file_exists && i <= mostInOneSecond; ++i)
        kept = prepared->takePlaceAt(backup.string() + "-" + std::to_string(i));
    return kept.has_value();
}

bool HookSettingsFile::write(const Record& record) const
{
    JSON json;
    if (record.original)
        json["original"] = *record.original;
    json["written"] = record.written;
    return writeSafely(*files, recordFile(), json.dump(), {}).has_value();
}

/// Absent if there is none or it cannot be read.
std::optional<HookSettingsFile::Record> HookSettingsFile::record() const
{
    const auto contents = files->read(recordFile());
    if (!contents || !*contents)
        return {};
    const auto json = parsedJSON((*contents)->bytes);
    if (!json)
        return {};
    auto record = decoded(JSONSource{*json}, [](const JSONSource& source) {
        const auto original = source.optional("original");
        return Record{.original = original ? std::optional{original->string()} : std::nullopt,
            .written = source.required("written").string()};
    });
    return record ? std::optional{*std::move(record)} : std::nullopt;
}

} // namespace vespra
