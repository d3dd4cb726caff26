#pragma once

#include "Core/RawValue.h"

namespace vespra {

/// The pages of the settings window, in order.
enum class SettingsTab { general, power, closedLid, agent, about };

template <>
inline constexpr auto rawValues<SettingsTab> = RawValueTable<SettingsTab, 5>{{
    {SettingsTab::general, "general"},
    {SettingsTab::power, "power"},
    {SettingsTab::closedLid, "closedLid"},
    {SettingsTab::agent, "agent"},
    {SettingsTab::about, "about"},
}};

} // namespace vespra
