#include "App/Model/RunningCommands.h"

#include "App/Model/AppModel.h"

#include <algorithm>

namespace vespra {

std::expected<RunningCommands::Command, StartRefusal> RunningCommands::begin(
    const Wishes& wishes, std::function<void()> onDropped)
{
    const auto& state = model_.coordinator().state();
    if (state.isActive())
        if (const auto joined = join(wishes); !joined)
            return std::unexpected{joined.error()};
    // Changing its options may have ended the session.
    if (!state.isActive())
        if (const auto started = startFor(wishes); !started)
            return std::unexpected{started.error()};
    commands_.emplace(++last_, Running{.wishes = wishes, .onDropped = std::move(onDropped)});
    remember();
    return last_;
}

void RunningCommands::end(Command command)
{
    if (commands_.erase(command) == 0)
        return;
    if (commands_.empty() && isOwnSession_)
        model_.coordinator().stop(end::StoppedByUser{});
    else
        lower();
    remember();
}

void RunningCommands::handle(const SessionEvent& event)
{
    const auto* ended = std::get_if<event::Ended>(&event);
    if (!ended)
        return;
    isOwnSession_ = false;
    const auto kind = traits(ended->end.reason);
    const bool isAsPlanned = kind.notifies && !kind.isGuardrail;
    if (isAsPlanned && !commands_.empty() && startOwnSession(options_))
        return;
    raised_ = {};
    const auto dropped = std::exchange(commands_, {});
    remember();
    for (const auto& [id, command] : dropped)
        notify(command.onDropped);
}

void RunningCommands::userChose(bool SessionOptions::* option)
{
    raised_.*option = false;
    remember();
}

std::expected<void, StartRefusal> RunningCommands::join(const Wishes& wishes)
{
    auto& coordinator = model_.coordinator();
    const auto options = coordinator.state().activeSession()->options;
    if (wishes.closedLid == true && !options.closedLid) {
        if (const auto changed = coordinator.setClosedLid(true); !changed)
            return changed;
        raised_.closedLid = true;
    }
    if (wishes.keepsDisplayAwake == true && !options.keepsDisplayAwake) {
        coordinator.setKeepsDisplayAwake(true);
        raised_.keepsDisplayAwake = true;
    }
    return {};
}

std::expected<void, StartRefusal> RunningCommands::startFor(const Wishes& wishes)
{
    const auto preferred = model_.preferences().options;
    const SessionOptions options{
        .keepsDisplayAwake = wishes.keepsDisplayAwake.value_or(preferred.keepsDisplayAwake),
        .closedLid = wishes.closedLid.value_or(preferred.closedLid),
    };
    if (!startOwnSession(options))
        // A session that was not refused ends at once only by the time limit on battery.
        return std::unexpected{model_.coordinator().refusal(options).value_or(refusal::ChargerRequired{})};
    raised_ = {
        .keepsDisplayAwake = options.keepsDisplayAwake && !preferred.keepsDisplayAwake,
        .closedLid = options.closedLid && !preferred.closedLid,
    };
    return {};
}

/// False if no session runs afterwards.
bool RunningCommands::startOwnSession(const SessionOptions& options)
{
    auto preferences = model_.preferences();
    preferences.mode = SessionMode::unlimited;
    preferences.options = options;
    model_.startUnconnected(preferences);
    isOwnSession_ = model_.coordinator().state().isActive();
    return isOwnSession_;
}

bool RunningCommands::isWanted(std::optional<bool> Wishes::* wish) const
{
    return std::ranges::any_of(
        commands_, [wish](const auto& each) { return (each.second.wishes.*wish).value_or(false); });
}

/// Switches off the options that no command wants any more; that is never refused.
void RunningCommands::lower()
{
    if (raised_.keepsDisplayAwake && !isWanted(&Wishes::keepsDisplayAwake)) {
        raised_.keepsDisplayAwake = false;
        model_.coordinator().setKeepsDisplayAwake(false);
    }
    if (raised_.closedLid && !isWanted(&Wishes::closedLid)) {
        raised_.closedLid = false;
        static_cast<void>(model_.coordinator().setClosedLid(false));
    }
}

void RunningCommands::remember()
{
    isAnyRunning_.set(!commands_.empty());
    if (const auto* session = model_.coordinator().state().activeSession())
        options_ = session->options;
}

} // namespace vespra
