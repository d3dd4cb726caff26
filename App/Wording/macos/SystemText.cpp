#include "App/Wording/SystemText.h"

namespace vespra {

std::string_view systemText(std::string_view literal) { return literal; }

} // namespace vespra
