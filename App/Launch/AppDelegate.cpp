#include "App/Launch/AppDelegate.h"

#include "App/Model/PreferencesStore.h"
#include "App/Wording/Localized.h"
#include "Core/Coding/DisplayText.h"
#include "HelperProtocol/Brand.h"
#include "Log/StandardError.h"

#include <cstdlib>

namespace vespra {

namespace {

    bool isSet(const char* variable)
    {
        const char* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
        return value && std::string_view{value} == "1";
    }

} // namespace

AppDelegate::AppDelegate(const AppEnvironment& environment, AppSurfaces* surfaces)
    : environment_{environment}
    , surfaces_{surfaces}
    , tracesAgents_{isSet("VESPRA_TRACE_AGENTS")}
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::didFinishLaunching()
{
    model_.emplace(environment_);
    makeClosedLid();
    model_->agentIntegration().installCommand();
    model_->agentIntegration().refresh();
    traceCorrections();
    listenToAgents();
    model_->forcedEndAction().perform = closedLid().performer();
    handleEvents();
    followSystem();
    makeAssertions();
    if (surfaces_)
        surfaces_->makePanel(surfaceContext());
    followRequirements();
    if (surfaces_)
        makeSurfaces();
    model_->sessionShortcut().start(lifetime_.guard([this] { model_->toggleSession(); }));
    listenToTerminals();
}

void AppDelegate::makeClosedLid()
{
    auto& platform = environment_.platform;
    model_->setClosedLidController(std::make_shared<ClosedLidController>(model_->coordinator(),
        ClosedLidEnvironment{
            .service = *platform.helper.service,
            .connect = platform.helper.connect,
            .facts = *platform.helper.facts,
            .power = *platform.helper.power,
            .tasks = *platform.time.tasks,
            .mainLoop = *platform.time.mainLoop,
            // With its lid closed the computer would otherwise fall asleep before it has shut down.
            .keepsOverride =
                [this] {
                    const auto& pending = model_->forcedEndAction().pending();
                    return pending && pending->action == AgentEndAction::shutDown;
                },
        }));
}

void AppDelegate::listenToAgents()
{
    agentSocket_.emplace(
        (environment_.supportDirectory / std::filesystem::path{Brand::agentSocketPath()}.filename()).string(),
        *environment_.platform.time.mainLoop,
        *environment_.platform.time.clock,
        lifetime_.guard([this](const AgentEvent& event) { receive(event); }));
    agentSocket_->start();
}

void AppDelegate::receive(const AgentEvent& event)
{
    if (tracesAgents_)
        standardError::write("agent-event " + std::string{rawValue(event.agent)} + " "
            + std::string{rawValue(event.signal)} + " " + displayText(event.sessionID) + " "
            + displayText(event.cwd.value_or("-")));
    model_->agentWatch().record(event);
}

void AppDelegate::traceCorrections()
{
    if (!tracesAgents_)
        return;
    model_->agentWatch().onCorrection
        = [](const std::string& sessionID, const AgentCorrection& correction, AgentEvidenceKind evidence) {
              standardError::write("agent-correction " + displayText(sessionID) + " "
                  + std::string{correction.activity ? rawValue(*correction.activity) : "sessionEnded"} + " "
                  + std::string{rawValue(evidence)});
          };
}

void AppDelegate::handleEvents()
{
    auto& notifier = eventHandler_.emplace(*model_, closedLid(), environment_.platform).notifier();
    model_->updates().onUpdateFound = lifetime_.guard(
        [this](const std::string& version) { eventHandler_->notifier().postUpdateAvailable(version); });
    model_->updates().onUpdateSeen = lifetime_.guard([this] { eventHandler_->notifier().removeUpdateAvailable(); });
    notifier.onOpenUpdate = lifetime_.guard([this] { openUpdate(); });
    notifier.onExtend = lifetime_.guard([this] { model_->coordinator().extend(); });
    notifier.onCancelForcedAction = lifetime_.guard([this] { model_->forcedEndAction().cancel(); });
    model_->forcedEndAction().onCancel = lifetime_.guard([this] { eventHandler_->notifier().removeAgentsFinished(); });
    model_->forcedEndAction().onPostpone
        = lifetime_.guard([this](AgentEndAction action) { eventHandler_->postAgentsFinished(action); });
    model_->coordinator().onEvent = lifetime_.guard([this](const SessionEvent& event) {
        eventHandler_->handle(event);
        notify(onEvent, event);
        model_->commands().handle(event);
    });
}

void AppDelegate::openUpdate()
{
    if (surfaces_)
        surfaces_->activate();
    if (!model_->updates().hasWindows())
        notify(model_->showSettings, SettingsTab::about);
    model_->updates().checkForUpdates();
}

void AppDelegate::followSystem()
{
    auto& platform = environment_.platform;
    platform.sleep->onWillSleep = lifetime_.guard([this] { model_->coordinator().systemWillSleep(); });
    platform.sleep->onDidWake = lifetime_.guard([this] { model_->agentWatch().look(); });
    model_->coordinator().updateLid(platform.lid->isClosedWithoutExternalDisplay());
    platform.lid->onChange = lifetime_.guard([this](bool closed) { model_->coordinator().updateLid(closed); });
}

void AppDelegate::makeAssertions()
{
    auto& platform = environment_.platform;
    assertions_.emplace(localized("%1: keeping the Mac awake", {Brand::appName()}),
        Brand::appBundleID(),
        PowerAssertionController::System{
            .assertions = *platform.assertions,
            .display = *platform.display,
            .lid = *platform.lid,
            .tasks = *platform.time.tasks,
        });
}

/// From now on the assertions that are held are those that the session requires.
void AppDelegate::followRequirements()
{
    auto& platform = environment_.platform;
    assertionLoop_.emplace(*platform.time.mainLoop, [this, &session = *platform.session] {
        session.sessionRuns(model_->coordinator().state().isActive());
        assertions_->apply(model_->coordinator().requirements());
    });
}

SurfaceContext AppDelegate::surfaceContext()
{
    auto& platform = environment_.platform;
    return {.model = *model_,
        .mainLoop = *platform.time.mainLoop,
        .tasks = *platform.time.tasks,
        .clock = model_->clock(),
        .appearance = *platform.appearance};
}

void AppDelegate::makeSurfaces()
{
    surfaces_->makeStatusItem(surfaceContext(),
        {
            .onToggle = lifetime_.guard(
                [this] { surfaces_->isPanelVisible() ? surfaces_->hidePanel() : surfaces_->showPanel(); }),
            .onSettings = lifetime_.guard([this] { notify(model_->showSettings, std::nullopt); }),
        });
    model_->showPanel = lifetime_.guard([this] {
        if (!surfaces_->isPanelVisible())
            surfaces_->showPanel();
    });
    surfaces_->makeSettingsWindow(surfaceContext());
    model_->showSettings = lifetime_.guard([this](std::optional<SettingsTab> tab) {
        surfaces_->hidePanel();
        surfaces_->showSettings(tab);
    });
    if (!PreferencesStore::didFinishOnboarding(environment_.defaults))
        surfaces_->showOnboarding(surfaceContext());
}

/// Comes last, so that every request finds the application complete.
void AppDelegate::listenToTerminals()
{
    controlServer_.emplace(*model_,
        *environment_.platform.time.mainLoop,
        *environment_.platform.time.tasks,
        (environment_.supportDirectory / controlProtocol::socketName).string());
    controlServer_->start();
}

void AppDelegate::shouldTerminate()
{
    if (model_ && model_->closedLid())
        closedLid().restoreBeforeQuit(restoreLimit);
}

void AppDelegate::willTerminate()
{
    if (!model_)
        return;
    model_->coordinator().stop(end::AppTerminated{});
    controlServer_.reset();
    model_->sessionShortcut().stop();
    if (assertionLoop_)
        assertionLoop_->stop();
    environment_.platform.session->sessionRuns(false);
    assertions_->apply(PowerRequirements::none());
}

} // namespace vespra
