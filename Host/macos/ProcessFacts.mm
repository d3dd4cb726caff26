#include "Host/ProcessFacts.h"

#include "Host/macos/LibProc.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vespra {

namespace {

    constexpr std::uint64_t microseconds = 1'000'000; // of a second

} // namespace

std::optional<ProcessFacts> processFacts(pid_t pid)
{
    proc_bsdinfo info{};
    constexpr std::uint64_t alsoEnded = 1; // one that nobody has waited for yet
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, alsoEnded, &info, sizeof info) != static_cast<int>(sizeof info))
        return {};
    return ProcessFacts{.name = {info.pbi_comm, strnlen(info.pbi_comm, sizeof info.pbi_comm)},
        .parent = static_cast<pid_t>(info.pbi_ppid),
        .start = info.pbi_start_tvsec * microseconds + info.pbi_start_tvusec,
        .hasEnded = info.pbi_status == SZOMB};
}

std::chrono::duration<double> age(const ProcessFacts& process)
{
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    return now - std::chrono::duration<double>{static_cast<double>(process.start) / static_cast<double>(microseconds)};
}

std::uint64_t processSpace() { return 0; }

bool hasChildYoungerThan(pid_t parent, std::chrono::duration<double> limit)
{
    const int room = proc_listchildpids(parent, nullptr, 0);
    std::vector<pid_t> children(room > 0 ? static_cast<std::size_t>(room) : 0);
    const int count = proc_listchildpids(parent, children.data(), static_cast<int>(children.size() * sizeof(pid_t)));
    children.resize(count > 0 ? std::min(static_cast<std::size_t>(count), children.size()) : 0);
    return std::ranges::any_of(children, [&](pid_t child) {
        const auto facts = processFacts(child);
        return facts && !facts->hasEnded && age(*facts) < limit;
    });
}

} // namespace vespra
