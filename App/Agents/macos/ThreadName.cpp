#include "App/Agents/ThreadName.h"

#include <pthread.h>

namespace vespra {

void nameThisThread(const char* name) { pthread_setname_np(name); }

} // namespace vespra
