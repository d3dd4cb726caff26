#include "Control/Doctor/linux/LogindSettings.h"

#include <fstream>
#include <map>
#include <vector>

namespace vespra::doctor {

namespace fs = std::filesystem;

namespace {

    std::string trimmed(std::string_view text)
    {
        constexpr auto blanks = " \t\r";
        const auto first = text.find_first_not_of(blanks);
        if (first == std::string_view::npos)
            return {};
        return std::string{text.substr(first, text.find_last_not_of(blanks) - first + 1)};
    }

    void readInto(std::optional<std::string>& value, const fs::path& file, std::string_view key)
    {
        std::ifstream stream{file};
        for (std::string line; std::getline(stream, line);) {
            const auto equals = line.find('=');
            if (equals == std::string::npos || trimmed(std::string_view{line}.substr(0, equals)) != key)
                continue;
            const auto text = trimmed(std::string_view{line}.substr(equals + 1));
            value = text.empty() ? std::nullopt : std::optional{text};
        }
    }

} // namespace

std::optional<std::string> logindSetting(const fs::path& root, std::string_view key)
{
    std::optional<std::string> value;
    for (const auto* folder : {"etc", "run", "usr/local/lib", "usr/lib"})
        if (const auto file = root / folder / "systemd/logind.conf"; fs::exists(file)) {
            readInto(value, file, key);
            break;
        }
    // Of files of one name the one in the first folder counts; then all are read in the order of their names.
    std::map<std::string, fs::path> additions;
    for (const auto* folder : {"etc", "run", "usr/local/lib", "usr/lib"}) {
        std::error_code error;
        for (fs::directory_iterator each{root / folder / "systemd/logind.conf.d", error}, end; !error && each != end;
            each.increment(error))
            if (each->path().extension() == ".conf")
                additions.try_emplace(each->path().filename(), each->path());
    }
    for (const auto& [name, file] : additions)
        readInto(value, file, key);
    return value;
}

bool saysYes(std::string_view value)
{
    return value == "1" || value == "yes" || value == "y" || value == "true" || value == "t" || value == "on";
}

} // namespace vespra::doctor
