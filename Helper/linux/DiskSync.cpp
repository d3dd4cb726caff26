#include "Helper/LedgerFile.h"

#include <unistd.h>

namespace vespra {

bool syncToDisk(int descriptor) { return fsync(descriptor) == 0; }

} // namespace vespra
