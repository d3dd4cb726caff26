#include "App/Desktop/Display.h"

#include "App/System/linux/X11.h"
#include "App/System/LocalSocket.h"
#include "App/Wording/Localized.h"

#include <QDir>
#include <QLibraryInfo>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace vespra {

namespace {

    constexpr auto choice = "QT_QPA_PLATFORM";

    bool isBuiltIn(const QString& platform)
    {
        const QDir plugins{QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms"};
        return !plugins.entryList({"libq" + platform + "*.so"}).isEmpty();
    }

    bool answers(const std::string& path)
    {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        if (path.size() >= sizeof address.sun_path)
            return false;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        const FileDescriptor client{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
        return connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }

    bool hasWaylandDisplay()
    {
        const auto name = qEnvironmentVariable("WAYLAND_DISPLAY");
        if (name.isEmpty())
            return false;
        const auto path = QDir::isAbsolutePath(name) ? name : qEnvironmentVariable("XDG_RUNTIME_DIR") + '/' + name;
        return answers(path.toStdString());
    }

} // namespace

std::expected<void, std::string> prepareDisplay()
{
    // Whoever chooses says what there is.
    if (!qEnvironmentVariableIsEmpty(choice))
        return {};
    // Under Wayland an application cannot say where its windows go, unless it speaks to the X server that is there too.
    if (isBuiltIn("xcb") && connectToX11())
        qputenv(choice, "xcb");
    else if (isBuiltIn("wayland") && hasWaylandDisplay())
        qputenv(choice, "wayland");
    else
        return std::unexpected{localized("There is no display: it runs in the terminal, as with --headless.")};
    return {};
}

} // namespace vespra
