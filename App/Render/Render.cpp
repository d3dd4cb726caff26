#include "App/Render/Render.h"

#include "App/Launch/ExitStatus.h"
#include "App/Render/Picture.h"
#include "App/Render/Scenes.h"
#include "ControlProtocol/CommandLine.h"

#include <QApplication>
#include <QDir>
#include <QStyleFactory>

namespace vespra {

namespace {

    /// What the user's desktop asks for must not be in the pictures.
    void isolate()
    {
        for (const char* variable : {"LANGUAGE",
                 "QT_FONT_DPI",
                 "QT_QPA_FONTDIR",
                 "QT_QPA_PLATFORMTHEME",
                 "QT_SCALE_FACTOR",
                 "QT_SCREEN_SCALE_FACTORS",
                 "QT_STYLE_OVERRIDE",
                 "QT_USE_PHYSICAL_DPI"})
            qunsetenv(variable);
        qputenv("LC_ALL", "en_GB.UTF-8");
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("TZ", "UTC");
    }

    QtMessageHandler tellAll = nullptr;

    /// All but one message: that windows cannot be limited in size, which nobody wants of the offscreen platform.
    void tell(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (!text.contains(QLatin1String{"propagateSizeHints"}))
            tellAll(type, context, text);
    }

    void settle(Stage& stage)
    {
        stage.settle();
        QApplication::processEvents();
    }

    bool draw(const Scene& scene, bool isDark, const QDir& folder)
    {
        QApplication::setLayoutDirection(scene.setup.isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        Stage stage{scene.setup, isDark};
        scene.play(stage);
        const auto surface = scene.surface(stage);
        surface->show();
        surface->activateWindow();
        settle(stage);
        if (scene.use) {
            scene.use(*surface);
            settle(stage);
        }
        bool isWritten = true;
        for (const int scale : {1, 2}) {
            const auto name
                = QStringLiteral("%1-%2@%3x.png").arg(scene.name, isDark ? "dark" : "light", QString::number(scale));
            isWritten = isWritten && writePicture(picture(*surface, scale), folder.filePath(name));
        }
        return isWritten;
    }

    int complain(const std::string& text, int exitStatus)
    {
        commandLine::complain(programName, "--render: " + text);
        return exitStatus;
    }

    std::string names(const std::vector<Scene>& scenes)
    {
        std::string text;
        for (const auto& scene : scenes)
            text += (text.empty() ? "" : ", ") + std::string{scene.name};
        return text;
    }

} // namespace

int renderSurfaces(const RenderRequest& request)
{
    auto chosen = scenes();
    const auto everything = names(chosen);
    if (request.name)
        std::erase_if(chosen, [&](const Scene& scene) { return scene.name != *request.name; });
    if (chosen.empty())
        return complain(
            "there is no \"" + request.name.value_or("") + "\"; there are: " + everything, ExitStatus::badArguments);
    const QDir folder{QString::fromStdString(request.directory)};
    if (!folder.mkpath(QStringLiteral(".")))
        return complain("\"" + request.directory + "\" cannot be made", ExitStatus::failed);

    isolate();
    int argumentCount = 1;
    std::string program{programName};
    char* arguments[] = {program.data(), nullptr};
    const QApplication application{argumentCount, arguments};
    tellAll = qInstallMessageHandler(tell);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    for (const auto& scene : chosen)
        for (const bool isDark : {false, true})
            if (!draw(scene, isDark, folder))
                return complain("cannot write \"" + std::string{scene.name} + "\" into \"" + request.directory + "\"",
                    ExitStatus::failed);
    return ExitStatus::done;
}

} // namespace vespra
