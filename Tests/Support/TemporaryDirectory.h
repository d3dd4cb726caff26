#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace vespra {

/// A directory of one test's own, with a short path, gone at its end.
class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        std::string pattern = "/tmp/vespra-XXXXXX";
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error{"cannot make a temporary directory"};
        path_ = pattern;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

} // namespace vespra
