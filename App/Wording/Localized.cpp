#include "App/Wording/Localized.h"

#include "App/Wording/SystemText.h"

#include <QCoreApplication>

namespace vespra {

namespace {

    std::string filledIn(std::string_view text, std::initializer_list<std::string> arguments)
    {
        std::string filled;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto number = text[i] == '%' && i + 1 < text.size() ? text[i + 1] - '0' : 0;
            if (number >= 1 && static_cast<std::size_t>(number) <= arguments.size()) {
                filled += arguments.begin()[number - 1];
                ++i;
            } else {
                filled += text[i];
            }
        }
        return filled;
    }

} // namespace

std::string localized(std::string_view literal, std::initializer_list<std::string> arguments)
{
    const std::string key{systemText(literal)};
    const auto text = QCoreApplication::translate(translationContext, key.c_str()).toStdString();
    return filledIn(text, arguments);
}

} // namespace vespra
