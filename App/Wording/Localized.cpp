#include "App/Wording/Localized.h"

namespace vespra {

std::string localized(std::string_view literal, std::initializer_list<std::string> arguments)
{
    std::string text;
    for (std::size_t i = 0; i < literal.size(); ++i) {
        const auto number = literal[i] == '%' && i + 1 < literal.size() ? literal[i + 1] - '0' : 0;
        if (number >= 1 && static_cast<std::size_t>(number) <= arguments.size()) {
            text += arguments.begin()[number - 1];
            ++i;
        } else {
            text += literal[i];
        }
    }
    return text;
}

} // namespace vespra
