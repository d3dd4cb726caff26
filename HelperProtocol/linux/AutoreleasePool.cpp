#include "HelperProtocol/AutoreleasePool.h"

namespace vespra {

int inAutoreleasePool(const std::function<int()>& program) { return program(); }

} // namespace vespra
