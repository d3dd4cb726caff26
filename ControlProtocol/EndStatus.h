#pragma once

#include <string_view>

namespace vespra::controlProtocol {

/// How a program exits that told of a session's end: 0 when it has ended as planned, else a status for each reason.
/// Given the reason's name; 1 for one that is unknown.
int exitStatusOfEnd(std::string_view reason);

} // namespace vespra::controlProtocol
