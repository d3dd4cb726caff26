#include "Host/ProcessFacts.h"

#include "HelperProtocol/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>

namespace vespra {

namespace {

    /// The words of /proc/<pid>/stat behind the name, from the third on, as proc(5) counts them.
    class StatWords {
    public:
        explicit StatWords(std::string_view rest)
            : rest_{rest}
        {
        }
        std::string_view next()
        {
            const auto length = std::min(rest_.find(' '), rest_.size());
            const auto word = rest_.substr(0, length);
            rest_.remove_prefix(std::min(length + 1, rest_.size()));
            return word;
        }
        template <class Number> Number nextNumber()
        {
            const auto word = next();
            Number number{};
            std::from_chars(word.data(), word.data() + word.size(), number);
            return number;
        }

    private:
        std::string_view rest_;
    };

    /// The name, in round brackets, may hold blanks and brackets itself.
    std::optional<ProcessFacts> parsedStat(std::string_view text)
    {
        const auto opening = text.find('('), closing = text.rfind(") ");
        if (opening == std::string_view::npos || closing == std::string_view::npos || closing < opening)
            return {};
        StatWords words{text.substr(closing + 2)};
        ProcessFacts facts{.name = std::string{text.substr(opening + 1, closing - opening - 1)}};
        const auto state = words.next();
        facts.hasEnded = state == "Z" || state == "X";
        facts.parent = words.nextNumber<pid_t>();
        constexpr int wordsBetween = 17; // from the 5th to the 21st
        for (int i = 0; i < wordsBetween; ++i)
            words.next();
        facts.start = words.nextNumber<std::uint64_t>();
        return facts.start != 0 ? std::optional{std::move(facts)} : std::nullopt;
    }

} // namespace

std::optional<ProcessFacts> processFacts(pid_t pid)
{
    std::array<char, 32> path;
    std::snprintf(path.data(), path.size(), "/proc/%d/stat", static_cast<int>(pid));
    const FileDescriptor file{open(path.data(), O_RDONLY | O_CLOEXEC)};
    std::array<char, 1024> text;
    const auto size = file ? read(file.get(), text.data(), text.size()) : -1;
    return size > 0 ? parsedStat({text.data(), static_cast<std::size_t>(size)}) : std::nullopt;
}

std::chrono::duration<double> age(const ProcessFacts& process)
{
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK)); // of a second
    return std::chrono::seconds{now.tv_sec} + std::chrono::nanoseconds{now.tv_nsec}
    - std::chrono::duration<double>{static_cast<double>(process.start) / ticks};
}

std::uint64_t processSpace()
{
    struct stat space{};
    return stat("/proc/self/ns/pid", &space) == 0 ? space.st_ino : 0;
}

bool hasChildYoungerThan(pid_t parent, std::chrono::duration<double> limit)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> processes{opendir("/proc"), closedir};
    while (const auto* entry = processes ? readdir(processes.get()) : nullptr) {
        const auto facts = processFacts(std::atoi(entry->d_name)); // 0 for what is no process
        if (facts && facts->parent == parent && !facts->hasEnded && age(*facts) < limit)
            return true;
    }
    return false;
}

} // namespace vespra
