#include "App/Render/Stage.h"

#include <QFontDatabase>

namespace vespra {

namespace {

    const Instant midnight = Instant::fromISO8601("2026-11-21T00:00:00Z").value();
    constexpr Seconds afternoon = 14h;

    /// The font that the look was drawn for, where it is installed.
    QFont textFont(double scale)
    {
        constexpr double usualPixels = 13;
        auto font = QFontDatabase::hasFamily(QStringLiteral("Inter")) ? QFont{QStringLiteral("Inter")} : QFont{};
        font.setPixelSize(static_cast<int>(std::lround(usualPixels * scale)));
        font.setHintingPreference(QFont::PreferNoHinting);
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
        return font;
    }

    std::filesystem::path path(const QTemporaryDir& folder) { return folder.path().toStdString(); }

} // namespace

Stage::Stage(const StageSetup& setup, bool isDark)
    : laptop_{midnight + afternoon}
    , delegate_{{.platform = laptop_.platform,
                    .defaults = nullptr,
                    .home = path(home_),
                    .supportDirectory = path(home_) / "support"},
          nullptr}
    , look_{{.isDark = isDark, .hasHighContrast = setup.hasHighContrast, .reducesMotion = true},
          textFont(setup.textScale)}
    , theme_{.mainLoop = laptop_.mainLoop, .look = look_}
{
    change([&](MachineState& machine) {
        machine.appearance = look_.appearance();
        machine.helper = SimulatedHelperMode::ready;
    });
    delegate_.didFinishLaunching();
    settle();
}

SurfaceContext Stage::context()
{
    auto& platform = laptop_.platform;
    return {.model = model(),
        .mainLoop = *platform.time.mainLoop,
        .tasks = *platform.time.tasks,
        .clock = model().clock(),
        .appearance = *platform.appearance};
}

void Stage::waitUntil(int hour, int minute, int second)
{
    const auto time = midnight + Seconds{std::chrono::hours{hour} + std::chrono::minutes{minute}} + Seconds{second};
    // In steps, for what is asked on the way is also to be answered on the way.
    constexpr Seconds step = 1s;
    while (laptop_.time.now() < time)
        laptop_.advance(std::min(step, time - laptop_.time.now()));
}

void Stage::change(const std::function<void(MachineState&)>& change)
{
    auto state = laptop_.machine().state();
    change(state);
    laptop_.machine().set(state);
    settle();
}

void Stage::prefer(const std::function<void(SessionPreferences&)>& change)
{
    auto preferences = model().preferences();
    change(preferences);
    model().setPreferences(preferences);
    settle();
}

void Stage::set(const std::function<void(SessionSettings&)>& change)
{
    model().changeSettings(change);
    settle();
}

void Stage::install(AgentKind agent)
{
    std::filesystem::create_directories(model().agentIntegration().settingsFile(agent).parent_path());
    model().agentIntegration().refresh();
}

void Stage::connect(AgentKind agent)
{
    install(agent);
    auto& integration = model().agentIntegration();
    if (const auto done = integration.hookFile(agent).connect(laptop_.time.now()); !done)
        qFatal("the hooks of an agent could not be written into %s", qPrintable(home_.path()));
    integration.refresh();
    settle();
}

void Stage::report(AgentKind agent, const std::string& folder, AgentSignal signal)
{
    model().agents().record({.agent = agent,
        .sessionID = folder,
        .cwd = "/home/me/" + folder,
        .signal = signal,
        .date = laptop_.time.now()});
    settle();
}

void Stage::start()
{
    model().start();
    settle();
}

} // namespace vespra
