#pragma once

#include "Core/Agents/OrderedJSON.h"

namespace vespra {

/// Adds our hooks to the text of an agent's settings file and takes them out again; everything else in it stays as it
/// is, but for its layout.
struct HookInstaller {
    enum class State { notInstalled, installed, partial };
    enum class Failure {
        unreadable, // not JSON
        unexpectedStructure, // the text, its "hooks" or the hooks of one of our events have another form
    };

    /// The command line that a hook runs.
    std::string command;
    /// The hook events to listen to, in the order in which they are added.
    std::vector<std::string> events;
    /// A command that contains this text is one of ours.
    std::string marker;
    /// How long the agent lets a hook run, in seconds.
    int timeout = 5;

    /// Appends our hook to each event that has none of ours. Absent or blank text counts as an empty object.
    std::expected<std::string, Failure> installing(const std::optional<std::string>& text) const;
    /// Removes all our hooks, whatever their event, and the groups and events that this leaves empty.
    std::expected<std::string, Failure> uninstalling(const std::string& text) const;
    /// Unreadable text counts as having no hooks of ours.
    State state(const std::optional<std::string>& text) const;
    /// Whether any event has a hook of ours, even one that is not in `events`.
    bool holdsOurs(const std::string& text) const;
    /// For display: what installing into an empty file adds, without a final line feed.
    std::string preview() const;

private:
    OrderedJSON group() const;
    std::expected<OrderedJSON, Failure> withHooks(const OrderedJSON& hooks) const;
    bool isOurs(const OrderedJSON& hook) const;
    bool containsOurs(const OrderedJSON& groups) const;
    std::optional<OrderedJSON> withoutOurs(const OrderedJSON& group) const;
    OrderedJSON::Array withoutOurs(const OrderedJSON::Array& groups) const;
    OrderedJSON withoutOurs(const OrderedJSON::Object& hooks) const;
};

/// Nothing but white space and line breaks.
bool isBlank(std::string_view text);

} // namespace vespra
