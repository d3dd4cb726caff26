#include "Tests/Fuzz/Check.h"
#include "Tests/Support/HookExamples.h"

#include <algorithm>
#include <cstdint>

using namespace vespra;

/// Of several only the first counts, so taking hooks out can bring the next to light.
static bool hasSeveralHooks(const std::string& text)
{
    const auto root = OrderedJSON::parse(text);
    return root && root->object() && std::ranges::count(*root->object(), "hooks", &OrderedJSON::Member::key) > 1;
}

/// Installing is complete and done once, and uninstalling leaves nothing of ours.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text{reinterpret_cast<const char*>(data), size};
    const auto installer = exampleInstaller(allAgentKinds[size % 2]);

    if (const auto installed = installer.installing(text)) {
        check(installer.state(*installed) == HookInstaller::State::installed);
        check(installer.installing(*installed) == installed);
    }
    if (const auto uninstalled = installer.uninstalling(text); uninstalled && !hasSeveralHooks(text)) {
        check(!installer.holdsOurs(*uninstalled));
        check(installer.state(*uninstalled) == HookInstaller::State::notInstalled);
        if (const auto again = installer.installing(*uninstalled))
            check(installer.uninstalling(*again).has_value());
    }
    return 0;
}
