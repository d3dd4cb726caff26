#include "App/Agents/AgentIntegration.h"

#include "Core/Files/SafeWriting.h"
#include "HelperProtocol/FileDescriptor.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vespra {

namespace {

    /// In double quotes for the shell that runs the hooks.
    std::string quoted(const std::string& path)
    {
        std::string text = "\"";
        for (const char c : path) {
            if (std::string_view{"\"\\$`"}.contains(c))
                text += '\\';
            text += c;
        }
        return text + "\"";
    }

    /// A regular file that its owner may run.
    bool isProgram(const FileDescriptor& file)
    {
        struct stat status{};
        return fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & S_IXUSR);
    }

    /// Whether `place` is the program `tool`, byte for byte. Compared in pieces, for that is done at every start.
    bool isCopy(const std::filesystem::path& place, const std::filesystem::path& tool)
    {
        const auto opened
            = [](const auto& path) { return FileDescriptor{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)}; };
        const auto copy = opened(place), original = opened(tool);
        if (!copy || !original || !isProgram(copy))
            return false;
        char copied[64 * 1024], wanted[sizeof copied];
        while (true) {
            const auto count = read(original.get(), wanted, sizeof wanted);
            if (count < 0 || read(copy.get(), copied, sizeof copied) != count
                || std::memcmp(copied, wanted, static_cast<std::size_t>(count)) != 0)
                return false;
            if (count == 0)
                return true;
        }
    }

    FileSystem::Result<void> copyTool(const std::filesystem::path& tool, const std::filesystem::path& place)
    {
        if (isCopy(place, tool))
            return {};
        auto& files = systemFiles();
        const auto wanted = files.read(tool);
        if (!wanted)
            return std::unexpected{wanted.error()};
        if (!*wanted)
            return std::unexpected{std::make_error_code(std::errc::no_such_file_or_directory)};
        if (const auto created = createDirectories(files, place.parent_path()); !created)
            return created;
        return writeSafely(files, place, (*wanted)->bytes, {.mode = 0700, .owner = {}});
    }

} // namespace

AgentIntegration::AgentIntegration(std::filesystem::path home, std::filesystem::path supportDirectory, bool isPreview)
    : home_{std::move(home)}
    , supportDirectory_{std::move(supportDirectory)}
    , isPreview_{isPreview}
    , logger_{Brand::appBundleID(), "agents"}
{
}

void AgentIntegration::refresh()
{
    if (isPreview_)
        return;
    Connections current;
    for (const auto kind : allAgentKinds)
        current[kind] = hookFile(kind).connection();
    connections_.set(std::move(current));
}

std::filesystem::path AgentIntegration::settingsFile(AgentKind kind) const
{
    return home_ / (kind == AgentKind::claudeCode ? ".claude/settings.json" : ".codex/hooks.json");
}

std::filesystem::path AgentIntegration::commandFile() const { return supportDirectory_ / Brand::agentCLIName(); }

HookSettingsFile AgentIntegration::hookFile(AgentKind kind) const
{
    const auto events = hookEvents(kind);
    const std::string name{rawValue(kind)};
    return {
        .file = settingsFile(kind),
        .installer = {.command = quoted(commandFile().string()) + " " + name,
            .events = {events.begin(), events.end()},
            .marker = Brand::agentCLIName(),
            .timeout = 5},
        .workDirectory = supportDirectory_ / "hooks",
        .name = name,
    };
}

AgentIntegration::CommandInstallation AgentIntegration::installCommand(
    const std::optional<std::filesystem::path>& tool) const
{
    if (isPreview_)
        return CommandInstallation::inPlace;
    if (!tool) {
        logger_.error("Commande des hooks absente du bundle");
        return CommandInstallation::notFound;
    }
    if (const auto copied = copyTool(*tool, commandFile()); !copied) {
        logger_.error("Copie de la commande des hooks impossible : " + copied.error().message());
        return CommandInstallation::notCopied;
    }
    return CommandInstallation::inPlace;
}

} // namespace vespra
