#include "App/Agents/ThreadName.h"

#include <pthread.h>

namespace vespra {

void nameThisThread(const char* name) { pthread_setname_np(pthread_self(), name); }

} // namespace vespra
