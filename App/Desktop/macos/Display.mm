#include "App/Desktop/Display.h"

#include "App/Wording/Localized.h"

#import <CoreGraphics/CoreGraphics.h>

namespace vespra {

std::expected<void, std::string> prepareDisplay()
{
    // Without a window server, as in a session over the network, there is no list.
    uint32_t count = 0;
    if (CGGetOnlineDisplayList(0, nullptr, &count) != kCGErrorSuccess || count == 0)
        return std::unexpected{localized("There is no display: it runs in the terminal, as with --headless.")};
    return {};
}

} // namespace vespra
