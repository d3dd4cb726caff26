#pragma once

#include "App/DesignSystem/Stepper.h"
#include "App/Settings/SettingsPages.h"

/// What the rows of the settings window show now, and what their controls change. Followed by an observation loop that
/// calls them. Main thread only.
namespace vespra::settingFacts {

/// Dependent rows are shown only while what they depend on is so.
bool isShown(const PageRow& row, AppModel& model);

/// A flag that is set, or a length that is not off.
bool isOn(const Setting& setting, const AppModel& model);
void setOn(const SwitchRow& row, AppModel& model, bool isOn);

Stepper::Facts stepperFacts(const StepperRow& row, const AppModel& model);
/// One step; nothing where there is none.
void step(const StepperRow& row, AppModel& model, bool forward);

/// The values of a choice in words, in their order.
std::vector<std::string> choices(const Setting& setting);
std::size_t chosen(const Setting& setting, const AppModel& model);
void choose(const Setting& setting, AppModel& model, std::size_t index);
/// What the chosen value means; may be empty.
std::string choiceExplanation(const Setting& setting, const AppModel& model);

/// "Version 1.0 (7)".
std::string versionText();

/// How it stands with new versions, and what the button beside does.
struct UpdateFacts {
    /// Empty: nothing to say.
    std::string text;
    std::string button;
    void (AppUpdates::*press)();
};
UpdateFacts updateFacts(const UpdateState& state);

/// What follows updates, and when they were last looked for.
std::string updateNote(AppModel& model);

} // namespace vespra::settingFacts
