#include "App/Render/Scenes.h"

namespace vespra {

std::vector<Scene> scenes()
{
    std::vector<Scene> all;
    for (const auto kind : {panelScenes(), statusItemScenes(), settingsScenes(), controlScenes()})
        all.insert(all.end(), kind.begin(), kind.end());
    return all;
}

} // namespace vespra
