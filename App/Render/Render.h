#pragma once

// App/Render: pictures of every surface. A scene drives the whole application, in virtual time on a laptop in memory,
// into a state, and makes the surface that shows it; nothing is put on by hand.

#include "App/Launch/LaunchOptions.h"

namespace vespra {

/// Draws the scenes into PNG files NAME-light@1x.png, NAME-dark@2x.png and so on, transparent outside, the same bytes
/// every time. Needs no display, and no other QCoreApplication in the process. Returns the exit status.
int renderSurfaces(const RenderRequest& request);

} // namespace vespra
