#pragma once

#include "Core/Updates/UpdateMessage.h"

#include <string>

namespace vespra {

/// What went wrong with an update, and what that means: a sentence or two for the user.
std::string explanation(UpdateFailure failure);

} // namespace vespra
