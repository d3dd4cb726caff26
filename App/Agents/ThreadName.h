#pragma once

namespace vespra {

/// Names the calling thread for debuggers and process lists; at most 15 bytes. One per system.
void nameThisThread(const char* name);

} // namespace vespra
