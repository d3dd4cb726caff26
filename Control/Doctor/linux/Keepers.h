#pragma once

#include "Control/Doctor/DoctorReport.h"
#include "Control/Doctor/linux/Bus.h"

namespace vespra::doctor {

inline constexpr Bus::Object logind{
    "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
inline constexpr Bus::Object sessionManager{
    "org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager"};
inline constexpr Bus::Object powerManagement{"org.freedesktop.PowerManagement",
    "/org/freedesktop/PowerManagement/Inhibit",
    "org.freedesktop.PowerManagement.Inhibit"};

/// Asks every service that keeps a list what it holds, and adds which of them a session asks for its lock. Plasma takes
/// logind's idle lock for a wish to keep the screen on, so none is asked for under `isKDE`.
void addKeepers(const Bus& system, const Bus& session, bool isKDE, Facts& facts);

/// The name of process `pid`; empty if it cannot be told.
std::string processName(long pid);

} // namespace vespra::doctor
