#include "App/Updates/UpdateWording.h"

#include "App/Wording/Localized.h"

namespace vespra {

std::string explanation(UpdateFailure failure)
{
    switch (failure) {
    case UpdateFailure::unreachable:
        return localized("The update server can't be reached. Check your connection and try again later.");
    case UpdateFailure::untrusted:
        return localized("The update isn't what its makers signed. Nothing was changed.");
    case UpdateFailure::tooLarge:
        return localized("The update is larger than it may be. Nothing was changed.");
    case UpdateFailure::notSaved:
        return localized("The update can't be saved. Check that there is room on the disk.");
    case UpdateFailure::notOpened:
        break;
    }
    return localized("No app here installs packages. Use the download page instead.");
}

} // namespace vespra
