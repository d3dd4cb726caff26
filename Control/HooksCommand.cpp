#include "App/Agents/AgentIntegration.h"
#include "App/Agents/HookTexts.h"
#include "App/Wording/SystemText.h"
#include "Control/Command.h"
#include "Core/Coding/DisplayText.h"
#include "Core/Scheduling/WallClock.h"
#include "HelperProtocol/PropertyList.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <memory>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vespra::control {

namespace {

    namespace fs = std::filesystem;

    struct HooksArguments {
        std::string home; // empty: this user's
        std::string agent; // "claude" or "codex"
        bool json = false;

        AgentKind kind() const { return fromRawValue<AgentKind>(agent).value(); }
        fs::path homeFolder() const
        {
            if (home.empty())
                return fs::absolute(homeDirectory());
            auto absolute = fs::absolute(home).lexically_normal();
            if (!absolute.has_filename()) // a slash at the end
                absolute = absolute.parent_path();
            return absolute;
        }
        AgentIntegration integration() const
        {
            const auto folder = homeFolder();
            return {folder,
                home.empty() ? Brand::applicationSupportDirectory()
                             : Brand::applicationSupportDirectory(folder.string())};
        }
    };

    /// As one word of a shell, on one line: the user may copy it.
    std::string asWord(const std::string& path)
    {
        std::string word = "'";
        for (const char each : displayText(path))
            word += each == '\'' ? std::string{"'\\''"} : std::string{each};
        return word + "'";
    }

    /// Whether the home directory is this user's. Even root changes nothing in another's: that user could not read,
    /// change or remove the files it would make.
    bool isAllowed(const HooksArguments& arguments, const std::string& verb)
    {
        const auto home = arguments.homeFolder();
        struct stat directory{};
        if (stat(home.c_str(), &directory) != 0 || directory.st_uid == geteuid())
            return true;
        const auto* owner = getpwuid(directory.st_uid);
        const auto user = owner ? std::string{owner->pw_name} : "'#" + std::to_string(directory.st_uid) + "'";
        const auto agent = arguments.agent.empty() ? "" : " " + arguments.agent;
        say(failed,
            "hooks: " + displayText(home.string()) + " belongs to another user. Run it as that user:\n  sudo -u " + user
                + " vespractl hooks " + verb + agent + " --home " + asWord(home.string()));
        return false;
    }

    int print(const std::string& text)
    {
        std::fputs(text.c_str(), stdout);
        return done;
    }

    std::string inWords(const AgentIntegration& integration, AgentKind kind, HookSettingsFile::Connection connection)
    {
        char line[64];
        std::snprintf(line,
            sizeof line,
            "%-13s%-17s",
            std::string{displayName(kind)}.c_str(),
            std::string{hookTexts::label(connection)}.c_str());
        return line + integration.settingsFile(kind).string() + "\n";
    }

    int status(const HooksArguments& arguments)
    {
        auto integration = arguments.integration();
        integration.refresh();
        std::string words;
        auto json = nlohmann::ordered_json::object();
        for (const auto& [kind, connection] : integration.connections()) {
            words += inWords(integration, kind, connection);
            json[std::string{rawValue(kind)}] = rawValue(connection);
        }
        return print(arguments.json ? json.dump() + "\n" : words);
    }

    int preview(const HooksArguments& arguments)
    {
        return print(arguments.integration().hookFile(arguments.kind()).installer.preview() + "\n");
    }

    /// Prints how the agent is connected now, or what has gone wrong.
    int report(const HooksArguments& arguments, const std::expected<void, HookSettingsFile::Failure>& result)
    {
        if (!result) {
            const std::string title{hookTexts::failureTitle}, message{systemText(hookTexts::message(result.error()))};
            const auto file = arguments.integration().settingsFile(arguments.kind()).string();
            return say(failed, title + ": " + displayText(file) + "\n" + message);
        }
        const auto integration = arguments.integration();
        const auto kind = arguments.kind();
        return print(inWords(integration, kind, integration.hookFile(kind).connection()));
    }

    /// The hooks run the copy of the hook command in the support folder.
    void installCommand(const AgentIntegration& integration)
    {
        const auto installation = integration.installCommand();
        if (installation == AgentIntegration::CommandInstallation::inPlace)
            return;
        const bool isMissing = installation == AgentIntegration::CommandInstallation::notFound;
        say(failed,
            "hooks: " + Brand::agentCLIName()
                + (isMissing ? " is not installed with vespractl" : " could not be copied to the support folder")
                + "; until it is, the hooks have nothing to run");
    }

    int connect(const HooksArguments& arguments)
    {
        const auto integration = arguments.integration();
        const auto file = integration.hookFile(arguments.kind());
        if (file.connection() != HookSettingsFile::Connection::agentNotFound)
            installCommand(integration);
        const auto exitStatus = report(arguments, file.connect(SystemClock{}.now()));
        if (exitStatus == done && arguments.kind() == AgentKind::codex)
            return print(std::string{hookTexts::codexNote} + "\n");
        return exitStatus;
    }

    int disconnect(const HooksArguments& arguments)
    {
        const auto file = arguments.integration().hookFile(arguments.kind());
        return report(arguments, file.disconnect(SystemClock{}.now()));
    }

} // namespace

void addHooksCommand(CLI::App& vespractl, int& exitStatus)
{
    const auto arguments = std::make_shared<HooksArguments>();
    auto* hooks = vespractl.add_subcommand("hooks", "Connects Vespra with coding agents, by hooks in their settings");
    hooks->require_subcommand(1);
    hooks->fallthrough();
    hooks->add_option("--home", arguments->home, "Another home directory; it must be this user's own")
        ->check(commandLine::directory())
        ->type_name("DIRECTORY");

    const auto add = [&](const char* name, const char* description, auto run) {
        auto* command = hooks->add_subcommand(name, description);
        command->fallthrough();
        command->callback([=, &exitStatus] { exitStatus = isAllowed(*arguments, name) ? run(*arguments) : failed; });
        return command;
    };
    const auto addForAgent = [&](const char* name, const char* description, auto run) {
        add(name, description, run)
            ->add_option("AGENT", arguments->agent, "claude or codex")
            ->required()
            ->check(commandLine::oneOf({"claude", "codex"}));
    };
    add("status", "Tells how each agent is connected", status)->add_flag("--json", arguments->json, "As JSON");
    addForAgent("preview", "Prints what connecting adds to the agent's settings file", preview);
    addForAgent("connect", "Adds the hooks, after making a backup", connect);
    addForAgent("disconnect", "Removes exactly what was added", disconnect);
}

} // namespace vespra::control
