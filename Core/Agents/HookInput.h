#pragma once

#include "Core/Coding/JSON.h"

#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// What Vespra reads of a hook's input. A member is absent when its key is missing or holds something else than a
/// text; the megabytes that may stand beside it are passed over.
struct HookInput {
    std::optional<std::string> hookEventName; // "hook_event_name"
    std::optional<std::string> sessionID; // "session_id"
    std::optional<std::string> cwd; // "cwd"
    std::optional<std::string> notificationType; // "notification_type"
    std::optional<std::string> message; // "message"

    bool operator==(const HookInput&) const = default;
};

/// Absent if `json` is not one JSON object. Under these keys every value must be right; of all others only the form
/// counts, not which escapes, bytes and sizes their texts and numbers hold.
std::optional<HookInput> parsedHookInput(std::string_view json);
/// The same of an object that has been parsed already.
HookInput hookInput(const JSON& object);

/// Tells, while a hook's input arrives piece by piece, when its JSON object is complete: agents do not always close
/// the hook's input.
class HookInputProgress {
public:
    /// Takes the next piece.
    void add(std::string_view piece);
    /// The braces and brackets opened first have all been closed.
    bool isComplete() const { return isComplete_; }

private:
    std::size_t passText(std::string_view piece);
    std::size_t passStructure(std::string_view piece);

    long depth_ = 0;
    bool inText_ = false;
    bool afterBackslash_ = false;
    bool isComplete_ = false;
};

} // namespace vespra
