#include "HelperProtocol/AutoreleasePool.h"

namespace vespra {

int inAutoreleasePool(const std::function<int()>& program)
{
    @autoreleasepool {
        return program();
    }
}

} // namespace vespra
