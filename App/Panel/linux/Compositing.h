#pragma once

namespace vespra::compositing {

/// Whether windows of the application can be seen through now.
bool isRunning();

} // namespace vespra::compositing
