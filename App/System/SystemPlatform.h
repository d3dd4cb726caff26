#pragma once

#include "App/System/Platform.h"

namespace vespra {

/// The system's own side of `makePlatform`: one implementation per system.

PlatformKind systemPlatformKind();

/// Nothing, or why the system's own platform cannot be the one to use here: a sentence.
std::expected<void, std::string> powerManagerAnswers();

PlatformTime makePlatformTime();

/// Fails with a sentence.
std::expected<Platform, std::string> makeSystemPlatform();

} // namespace vespra
