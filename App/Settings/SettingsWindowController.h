#pragma once

#include "App/Settings/SettingsWindow.h"
#include "Core/Lifetime.h"

#include <memory>

namespace vespra {

/// The one settings window: made when it is asked for, and gone when it is closed. Main thread only.
class SettingsWindowController {
public:
    SettingsWindowController(const SurfaceContext& context, const Theme& theme);

    /// Opens the window, or takes it to the front, at the page of this tab; absent: at the one that it shows already.
    void show(std::optional<SettingsTab> tab);

    /// Null while it is closed.
    QWidget* window() const { return window_.get(); }

private:
    const SurfaceContext context_;
    const Theme theme_;
    std::unique_ptr<SettingsWindow> window_;
    Lifetime lifetime_;
};

} // namespace vespra
