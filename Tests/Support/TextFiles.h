#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace vespra {

/// The bytes of a file; absent where it cannot be read.
inline std::optional<std::string> textOf(const std::filesystem::path& path)
{
    std::ifstream file{path, std::ios::binary};
    if (!file)
        return {};
    return std::string{std::istreambuf_iterator<char>{file}, {}};
}

/// Writes a file, and the folders on the way to it.
inline void putText(const std::filesystem::path& path, std::string_view text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream{path, std::ios::binary} << text;
}

} // namespace vespra
