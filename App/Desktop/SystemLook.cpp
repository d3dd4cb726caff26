#include "App/Desktop/SystemLook.h"

#include <QApplication>
#include <QEvent>

namespace vespra {

SystemLook::SystemLook(MainLoop& mainLoop, const AppearanceMonitoring& appearance)
    : look_{appearance.current(), QApplication::font()}
    , loop_{mainLoop, [this, &appearance] { look_.setAppearance(appearance.current()); }}
{
    qApp->installEventFilter(this);
}

bool SystemLook::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationFontChange && watched == qApp)
        look_.setFont(QApplication::font());
    return false;
}

} // namespace vespra
