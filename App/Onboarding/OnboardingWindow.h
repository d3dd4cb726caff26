#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Label.h"
#include "App/DesignSystem/WindowGround.h"
#include "App/Launch/AppSurfaces.h"
#include "App/Onboarding/OnboardingFacts.h"

#include <QVBoxLayout>

namespace vespra {

class StatusLine;
class StepDots;
class SymbolPlate;

/// Walks the user through the steps of the first launch. It is as high as its texts.
class OnboardingWindow final : public QWidget {
public:
    OnboardingWindow(const SurfaceContext& context, const Theme& theme);

    void go(OnboardingStep step);

    /// Called when the last step is done, and when the user has closed the window.
    std::function<void()> onFinish;

protected:
    void paintEvent(QPaintEvent*) override { ground_.paint(); }
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void display(const OnboardingFacts& facts);
    void perform(OnboardingAction action);
    void fadeIn();
    void fit();

    AppModel& model_;
    const Theme theme_;
    Observed<OnboardingStep> step_;
    std::vector<OnboardingAction> actions_;
    QWidget* contents_;
    SymbolPlate* symbol_;
    Label* title_;
    Label* message_;
    StatusLine* status_;
    Button* primary_;
    Button* secondary_;
    StepDots* dots_;
    WindowGround ground_;
};

} // namespace vespra
