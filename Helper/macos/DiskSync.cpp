#include "Helper/LedgerFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace vespra {

// fsync alone leaves the data in the drive's cache. Not every file system knows the full one.
bool syncToDisk(int descriptor) { return fcntl(descriptor, F_FULLFSYNC) == 0 || fsync(descriptor) == 0; }

} // namespace vespra
