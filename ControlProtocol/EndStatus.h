#pragma once

#include <string_view>

namespace vespra::controlProtocol {

/// The exit status of a program that has reported the end of a session, from the reason's name: 0 for a planned end,
/// else one for each reason; 1 for an unknown name.
int exitStatusOfEnd(std::string_view reason);

} // namespace vespra::controlProtocol
