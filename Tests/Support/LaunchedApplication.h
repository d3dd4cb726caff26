#pragma once

#include "App/Launch/AppDelegate.h"
#include "Core/Agents/HookSettingsFile.h"
#include "Tests/Support/QtApplication.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace vespra {

/// The whole application on a virtual laptop, with a home directory of its own.
template <class Application> class LaunchedApplicationOf : public testing::Test {
protected:
    void make(AppSurfaces* surfaces = nullptr)
    {
        delegate.emplace(
            AppEnvironment{
                .platform = laptop.platform,
                .defaults = &defaults,
                .home = home.path(),
                .supportDirectory = home / "support",
            },
            surfaces);
    }
    void launch(AppSurfaces* surfaces = nullptr)
    {
        make(surfaces);
        delegate->onEvent = [this](const SessionEvent& event) { events.emplace_back(caseName(event)); };
        delegate->didFinishLaunching();
        laptop.settle();
    }
    AppModel& model() { return delegate->model(); }
    SessionCoordinator& coordinator() { return model().coordinator(); }
    bool isActive() { return coordinator().state().isActive(); }
    /// The name of the reason why the last session ended.
    std::string lastEnd()
    {
        const auto end = coordinator().state().lastEnd();
        return end ? std::string{caseName(end->reason)} : "";
    }

    /// Changes the settings as `change` does.
    void setSettings(auto change) { model().changeSettings(change); }
    void prefer(SessionMode mode, SessionOptions options = {})
    {
        auto preferences = model().preferences();
        preferences.mode = mode;
        preferences.options = options;
        model().setPreferences(preferences);
    }
    /// From a terminal, say: the application has not looked since.
    void connectClaudeElsewhere()
    {
        std::filesystem::create_directories(home / ".claude");
        const AgentIntegration terminal{home.path(), home / "support"};
        ASSERT_TRUE(terminal.hookFile(AgentKind::claudeCode).connect(laptop.time.now()));
    }
    void connectClaude()
    {
        connectClaudeElsewhere();
        model().agentIntegration().refresh();
    }
    /// An agent reports.
    void agent(AgentSignal signal)
    {
        model().agents().record({.agent = AgentKind::claudeCode,
            .sessionID = "a",
            .cwd = "/home/u/project",
            .signal = signal,
            .date = laptop.time.now()});
        laptop.settle();
    }

    QtApplicationOf<Application> application;
    TemporaryDirectory home;
    MemoryDefaults defaults;
    VirtualPlatform laptop;
    std::vector<std::string> events;
    std::optional<AppDelegate> delegate;
};
using LaunchedApplication = LaunchedApplicationOf<QCoreApplication>;

} // namespace vespra
