#include "Log/StandardError.h"

#include <cstdio>

namespace vespra::standardError {

namespace {

    std::function<void(const std::string&)>& redirection()
    {
        static std::function<void(const std::string&)> sink;
        return sink;
    }

} // namespace

void write(const std::string& line)
{
    if (const auto& sink = redirection())
        sink(line);
    else
        std::fprintf(stderr, "%s\n", line.c_str());
}

void redirect(std::function<void(const std::string&)> sink) { redirection() = std::move(sink); }

} // namespace vespra::standardError
