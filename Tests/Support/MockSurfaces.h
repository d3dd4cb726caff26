#pragma once

#include "App/Launch/AppSurfaces.h"

#include <gmock/gmock.h>

namespace vespra {

class MockSurfaces : public AppSurfaces {
public:
    MOCK_METHOD(void, activate, (), (override));
    MOCK_METHOD(void, makePanel, (const SurfaceContext&), (override));
    MOCK_METHOD(bool, isPanelVisible, (), (const, override));
    MOCK_METHOD(void, showPanel, (), (override));
    MOCK_METHOD(void, hidePanel, (), (override));
    MOCK_METHOD(void, makeStatusItem, (const SurfaceContext&, StatusItemActions), (override));
    MOCK_METHOD(void, makeSettingsWindow, (const SurfaceContext&), (override));
    MOCK_METHOD(void, showSettings, (std::optional<SettingsTab>), (override));
    MOCK_METHOD(void, showOnboarding, (const SurfaceContext&), (override));
};

} // namespace vespra
