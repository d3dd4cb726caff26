#pragma once

#include "App/DesignSystem/IconLabel.h"
#include "App/Onboarding/OnboardingFacts.h"

namespace vespra {

/// The symbol of a step on its ground.
class SymbolPlate final : public QWidget {
public:
    explicit SymbolPlate(const Theme& theme);

    void show(std::string_view symbol);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    std::string_view symbol_;
    FollowsLook follows_;
};

/// How what the step is about stands: a symbol and a few words.
class StatusLine final : public QWidget {
public:
    explicit StatusLine(const Theme& theme);

    void show(const OnboardingFacts::Status& status);

private:
    IconLabel* icon_;
    Label* text_;
};

/// A dot for each step, that of the current one in colour.
class StepDots final : public QWidget {
public:
    StepDots(const Theme& theme, int count);

    /// From 0.
    void show(int current);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    int count_;
    int current_ = 0;
    FollowsLook follows_;
};

} // namespace vespra
