#include "App/DesignSystem/Following.h"

namespace vespra {

namespace {

    struct KeptLoop final : QObject {
        KeptLoop(QWidget& widget, MainLoop& mainLoop, std::function<void()> block)
            : QObject{&widget}
            , loop{mainLoop, std::move(block)}
        {
        }

        ObservationLoop loop;
    };

} // namespace

void follow(QWidget& widget, const Theme& theme, std::function<void()> block)
{
    new KeptLoop{widget, theme.mainLoop, std::move(block)};
}

} // namespace vespra
