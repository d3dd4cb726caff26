#include "Core/Scheduling/MainThread.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace vespra::mainThread {

namespace {

    std::thread::id mainThreadID = std::this_thread::get_id();

    std::function<void(const std::string&)>& violationReport()
    {
        static std::function<void(const std::string&)> report;
        return report;
    }

} // namespace

void adopt() { mainThreadID = std::this_thread::get_id(); }

bool isCurrent() { return std::this_thread::get_id() == mainThreadID; }

void check(std::source_location where)
{
    if (isCurrent())
        return;
    const auto place = std::string{where.file_name()} + ":" + std::to_string(where.line()) + ": "
        + where.function_name() + " must run on the main thread";
    if (const auto& report = violationReport())
        return report(place);
    std::fprintf(stderr, "%s\n", place.c_str());
    std::abort();
}

void onViolation(std::function<void(const std::string& place)> report) { violationReport() = std::move(report); }

} // namespace vespra::mainThread
