#pragma once

#include "App/Agents/AgentFiles.h"
#include "App/Agents/AgentProcesses.h"

#include <algorithm>
#include <map>
#include <set>

namespace vespra {

/// Agents' files in memory, steered by hand. A path without content is no regular file.
class SimulatedAgentFiles final : public AgentFiles {
public:
    std::map<std::string, std::optional<std::string>> files;
    /// What has been asked for so far.
    std::size_t reads = 0;

    std::optional<FileFacts> facts(const std::string& path) override
    {
        ++reads;
        const auto* content = find(path);
        return content ? std::optional{FileFacts{.device = 1, .inode = inode(path), .size = content->size()}}
                       : std::nullopt;
    }
    std::optional<std::string> read(
        const std::string& path, const FileFacts& expected, std::uint64_t from, std::uint64_t length) override
    {
        const auto* content = find(path);
        if (!content || expected.inode != inode(path))
            return {};
        return from < content->size() ? content->substr(from, length) : "";
    }
    std::vector<std::string> names(const std::string& folder, std::size_t limit) override
    {
        std::vector<std::string> names;
        for (const auto& [path, content] : files)
            if (names.size() < limit && path.starts_with(folder + "/"))
                names.push_back(path.substr(folder.size() + 1));
        return names;
    }

private:
    const std::string* find(const std::string& path) const
    {
        const auto found = files.find(path);
        return found != files.end() && found->second ? &*found->second : nullptr;
    }
    static std::uint64_t inode(const std::string& path) { return std::hash<std::string>{}(path); }
};

/// Processes in memory: those that live, and their children with the dates of their starts.
class SimulatedAgentProcesses final : public AgentProcesses {
public:
    explicit SimulatedAgentProcesses(const WallClock& clock)
        : clock_{clock}
    {
    }

    std::set<std::pair<std::int64_t, std::uint64_t>> alive; // number and start
    std::map<std::int64_t, std::vector<Instant>> children;

    AgentReading::Process state(const ProcessIdentity& process) override
    {
        using Process = AgentReading::Process;
        if (process.space != 0)
            return Process::unknown;
        return alive.contains({process.pid, process.start}) ? Process::alive : Process::gone;
    }
    bool hasChildYoungerThan(const ProcessIdentity& process, Seconds age) override
    {
        return std::ranges::any_of(children[process.pid], [&](Instant start) { return clock_.now() - start < age; });
    }

private:
    const WallClock& clock_;
};

} // namespace vespra
