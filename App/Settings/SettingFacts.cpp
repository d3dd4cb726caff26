#include "App/Settings/SettingFacts.h"

#include "App/Model/ModelSettings.h"
#include "App/System/ClosedLidController.h"
#include "App/Updates/UpdateWording.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "Core/Session/CountdownFormat.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/PropertyList.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace vespra::settingFacts {

namespace {

    using namespace setting;

    bool isShutDownForNothing(const AppModel& model)
    {
        return model.coordinator().settings().agents.endAction == AgentEndAction::shutDown
            && !isReady(model.coordinator().conditions().helper);
    }

    bool isShown(SpecialRow row, AppModel& model)
    {
        switch (row) {
        case SpecialRow::loginApproval:
            return model.loginItem().requiresApproval();
        case SpecialRow::shutDownWarning:
            return isShutDownForNothing(model);
        default:
            return true;
        }
    }

    Stepper::Facts percentageFacts(const Percentage& percentage, std::int64_t value)
    {
        const auto text = localized("%1 %", {std::to_string(value)});
        return {
            .value = text,
            .spokenValue = text,
            .canDecrement = stepped(percentage, value, false) != value,
            .canIncrement = stepped(percentage, value, true) != value,
        };
    }

    bool isWholeMinutes(Seconds length) { return std::fmod(length.count(), Seconds{1min}.count()) == 0; }

    Stepper::Facts lengthFacts(const Length& length, const std::optional<Seconds>& value)
    {
        const auto& format = Format::current();
        const auto brief = [&] {
            // Set by other means than the stepper's.
            return isWholeMinutes(*value) ? format.briefDuration(*value) : CountdownFormat::remaining(*value);
        };
        return {
            .value = value ? brief() : localized("No limit"),
            .spokenValue = value ? format.spokenDuration(*value) : localized("No limit"),
            .canDecrement = stepped(length, value, false) != value,
            .canIncrement = stepped(length, value, true) != value,
        };
    }

    /// Changes a setting of `Kind` from what it is to what `next` makes of it.
    template <class Kind> void change(const Setting& setting, AppModel& model, auto next)
    {
        const auto& kind = std::get<Kind>(setting.kind);
        changeSetting(model, setting, [&](UserSettings& settings) {
            kind.field.set(settings, next(kind, kind.field.get(settings)));
        });
    }

    std::string titleOf(std::string_view name)
    {
        const auto action = fromRawValue<AgentEndAction>(name);
        return action ? title(*action) : std::string{name};
    }

} // namespace

bool isShown(const PageRow& row, AppModel& model)
{
    if (const auto* const special = std::get_if<SpecialRow>(&row))
        return isShown(*special, model);
    const auto* const stepper = std::get_if<StepperRow>(&row);
    return !stepper || !stepper->whileOn || isOn(*stepper->whileOn, model);
}

bool isOn(const Setting& setting, const AppModel& model)
{
    const auto settings = settingsOf(model);
    if (const auto* const length = std::get_if<Length>(&setting.kind))
        return length->field.get(settings).has_value();
    return std::get<Flag>(setting.kind).field.get(settings);
}

void setOn(const SwitchRow& row, AppModel& model, bool isOn)
{
    if (row.change)
        return (model.*row.change)(isOn);
    if (std::holds_alternative<Flag>(row.setting->kind))
        return change<Flag>(*row.setting, model, [isOn](const Flag&, bool) { return isOn; });
    change<Length>(*row.setting, model, [isOn](const Length& length, const std::optional<Seconds>&) {
        return isOn ? std::optional{length.whenSwitchedOn} : std::nullopt;
    });
}

Stepper::Facts stepperFacts(const StepperRow& row, const AppModel& model)
{
    const auto settings = settingsOf(model);
    const auto* const percentage = std::get_if<Percentage>(&row.setting->kind);
    const auto facts = [&] {
        if (percentage)
            return percentageFacts(*percentage, percentage->field.get(settings));
        const auto& length = std::get<Length>(row.setting->kind);
        return lengthFacts(length, length.field.get(settings));
    };
    auto named = facts();
    named.name = localized(row.label);
    return named;
}

void step(const StepperRow& row, AppModel& model, bool forward)
{
    const auto next = [forward](const auto& kind, const auto& value) { return stepped(kind, value, forward); };
    if (std::holds_alternative<Percentage>(row.setting->kind))
        change<Percentage>(*row.setting, model, next);
    else
        change<Length>(*row.setting, model, next);
}

std::vector<std::string> choices(const Setting& setting)
{
    std::vector<std::string> titles;
    for (const auto& name : std::get<Choice>(setting.kind).names)
        titles.push_back(titleOf(name));
    return titles;
}

std::size_t chosen(const Setting& setting, const AppModel& model)
{
    const auto& choice = std::get<Choice>(setting.kind);
    const auto found = std::ranges::find(choice.names, choice.field.get(settingsOf(model)));
    return static_cast<std::size_t>(found - choice.names.begin());
}

void choose(const Setting& setting, AppModel& model, std::size_t index)
{
    change<Choice>(setting, model, [index](const Choice& choice, std::string_view) { return choice.names.at(index); });
}

std::string choiceExplanation(const Setting& setting, const AppModel& model)
{
    const auto& choice = std::get<Choice>(setting.kind);
    const auto action = fromRawValue<AgentEndAction>(choice.field.get(settingsOf(model)));
    return action ? explanation(*action) : "";
}

std::string versionText()
{
    const auto version = propertyListText("CFBundleShortVersionString").value_or("");
    const auto build = propertyListText("CFBundleVersion").value_or("");
    if (build.empty() || build == version)
        return localized("Version %1", {version});
    return localized("Version %1 (%2)", {version, build});
}

UpdateFacts updateFacts(const UpdateState& state)
{
    const auto check = [](std::string text) {
        return UpdateFacts{std::move(text), localized("Check for Updates…"), &AppUpdates::checkForUpdates};
    };
    const auto wait
        = [](std::string text) { return UpdateFacts{std::move(text), localized("Cancel"), &AppUpdates::cancel}; };
    return match(
        state,
        [&](update::Idle) { return check(""); },
        [&](update::Checking) { return wait(localized("Looking for a new version…")); },
        [&](update::UpToDate) { return check(localized("%1 is up to date.", {Brand::appName()})); },
        [](const update::Available& found) {
            const auto title = localized("%1 %2 is available", {Brand::appName(), found.version});
            return UpdateFacts{found.notes.empty() ? title : title + "\n" + found.notes,
                found.isDownloaded ? localized("Install") : localized("Download and Install"),
                &AppUpdates::install};
        },
        [&](const update::Downloading& download) {
            const auto percent = std::to_string(static_cast<int>(download.fraction * 100));
            return wait(localized("Downloading %1 %2: %3 %", {Brand::appName(), download.version, percent}));
        },
        [&](update::Failed failed) { return check(explanation(failed.reason)); });
}

std::string updateNote(AppModel& model)
{
    const auto note
        = localized("New versions are downloaded in the background and installed when %1 quits.", {Brand::appName()});
    const auto last = model.updates().lastCheck();
    if (!last)
        return note;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(last->since1970());
    const auto date = QDateTime::fromSecsSinceEpoch(seconds.count()).date();
    const auto text = QLocale::system().toString(date, QLocale::ShortFormat).toStdString();
    return note + " " + localized("Last checked %1.", {text});
}

} // namespace vespra::settingFacts
