#include "Helper/LedgerFile.h"

#include "Host/Host.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vespra {

namespace {

    /// Many times what a record needs.
    constexpr std::size_t longestLedger = 4096;

    FileDescriptor openFile(const std::string& path, int flags)
    {
        return FileDescriptor{open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600)};
    }

    std::unexpected<std::string> failure(const std::string& what, const std::string& path)
    {
        return std::unexpected{what + " " + path + " : " + std::strerror(errno)};
    }

    bool writeAll(int descriptor, std::string_view text)
    {
        while (!text.empty()) {
            const auto written = write(descriptor, text.data(), text.size());
            if (written < 0 && errno != EINTR)
                return false;
            text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
        return true;
    }

    /// Absent with errno on an error. Longer files come cut off, and so do not parse.
    std::optional<std::string> readAll(int descriptor)
    {
        std::string text;
        std::array<char, 1024> part;
        while (text.size() < longestLedger) {
            const auto count = read(descriptor, part.data(), part.size());
            if (count == 0)
                break;
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                return {};
            text.append(part.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

} // namespace

LedgerFile::LedgerFile(std::string directory)
    : directory_{std::move(directory)}
    , path_{directory_ + "/sleep-override.json"}
{
}

bool LedgerFile::claim()
{
    // A failure is ignored: without a directory there is nothing to claim.
    static_cast<void>(makeDirectory());
    claim_ = openFile(directory_, O_RDONLY | O_DIRECTORY);
    return !claim_ || flock(claim_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

std::expected<std::optional<SleepOverrideRecord>, std::string> LedgerFile::read()
{
    const auto file = openFile(path_, O_RDONLY);
    if (!file && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    if (!file)
        return failure("ouverture impossible de", path_);
    const auto text = readAll(file.get());
    if (!text)
        return failure("lecture impossible de", path_);
    const auto json = JSON::parse(*text, nullptr, false);
    if (json.is_discarded())
        return std::unexpected{path_ + " n'est pas du JSON"};
    const auto record = sleepOverrideRecord(json);
    if (!record)
        return std::unexpected{path_ + " : " + record.error().description()};
    return *record;
}

HelperResult LedgerFile::write(const SleepOverrideRecord& record)
{
    if (const auto made = makeDirectory(); !made)
        return made;
    const auto temporary = path_ + ".new";
    if (const auto written = writeAndSync(temporary, toJSON(record).dump() + "\n"); !written)
        return written;
    if (rename(temporary.c_str(), path_.c_str()) != 0)
        return failure("renommage impossible de", temporary);
    return syncDirectory(directory_);
}

HelperResult LedgerFile::makeDirectory() const
{
    if (mkdir(directory_.c_str(), 0700) == 0)
        return syncDirectory(directory_ + "/..");
    if (errno != EEXIST)
        return failure("création impossible de", directory_);
    return {};
}

HelperResult LedgerFile::writeAndSync(const std::string& path, const std::string& text) const
{
    const auto file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
    if (!file || !writeAll(file.get(), text) || !syncToDisk(file.get()))
        return failure("écriture impossible de", path);
    return {};
}

HelperResult LedgerFile::erase()
{
    if (unlink(path_.c_str()) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return {};
        return failure("suppression impossible de", path_);
    }
    return syncDirectory(directory_);
}

HelperResult LedgerFile::setAside()
{
    if (rename(path_.c_str(), (path_ + ".bad").c_str()) != 0 && errno != ENOENT)
        return failure("mise de côté impossible de", path_);
    return syncDirectory(directory_);
}

HelperResult LedgerFile::syncDirectory(const std::string& path)
{
    const auto directory = openFile(path, O_RDONLY | O_DIRECTORY);
    if (!directory || !syncToDisk(directory.get()))
        return failure("synchronisation impossible de", path);
    return {};
}

} // namespace vespra
