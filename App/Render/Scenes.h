#pragma once

#include "App/Render/Stage.h"

#include <QWidget>

#include <span>

namespace vespra {

/// One picture: what happens, and then the surface that shows it.
struct Scene {
    /// Part of the names of the files.
    const char* name;
    void (*play)(Stage& stage);
    std::unique_ptr<QWidget> (*surface)(Stage& stage);
    /// How its stage is set up besides light and dark.
    StageSetup setup = {};
    /// What happens once the surface is shown; null: nothing.
    void (*use)(QWidget& surface) = nullptr;
};

/// Those of one kind.
std::span<const Scene> panelScenes();
std::span<const Scene> statusItemScenes();
std::span<const Scene> settingsScenes();
std::span<const Scene> controlScenes();

/// All there are, in the order in which they are drawn.
std::vector<Scene> scenes();

} // namespace vespra
