#pragma once

namespace vespra {

/// What desktops and screen readers know the application by: its icon in their lists of windows, the entry of the
/// desktop that it belongs to, and its windows, popups too. Once, after the `QApplication` has been made. Main thread
/// only.
void setApplicationIdentity();

} // namespace vespra
