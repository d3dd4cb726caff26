#include "HelperProtocol/Brand.h"

#include "HelperProtocol/PropertyList.h"

#include <cstdio>
#include <cstdlib>

namespace vespra::Brand {

namespace {

    std::string read(std::string_view key) { return requiredValue(key, propertyListText(key)); }

} // namespace

std::string requiredValue(std::string_view key, std::optional<std::string> value)
{
    if (value && !value->empty())
        return *std::move(value);
    std::fprintf(stderr,
        "The application's property list has no text under \"%.*s\".\n",
        static_cast<int>(key.size()),
        key.data());
    std::abort();
}

const std::string& appName()
{
    static const auto value = read("BrandAppName");
    return value;
}

const std::string& appBundleID()
{
    static const auto value = read("BrandAppBundleID");
    return value;
}

const std::string& helperBundleID()
{
    static const auto value = read("BrandHelperBundleID");
    return value;
}

const std::string& teamID()
{
    static const auto value = read("BrandTeamID");
    return value;
}

const std::string& agentCLIName()
{
    static const auto value = read("BrandAgentCLIName");
    return value;
}

std::string applicationSupportDirectory() { return supportDirectory() + "/" + appName(); }

std::string applicationSupportDirectory(std::string_view home) { return supportDirectory(home) + "/" + appName(); }

std::string agentSocketPath() { return applicationSupportDirectory() + "/agent.sock"; }

const std::string& helperMachServiceName() { return helperBundleID(); }

std::string codeSigningRequirement(std::string_view identifier)
{
    std::string requirement = "identifier \"";
    requirement += identifier;
    requirement += "\" and anchor apple generic and certificate leaf[subject.OU] = \"";
    requirement += teamID();
    requirement += '"';
    return requirement;
}

} // namespace vespra::Brand
