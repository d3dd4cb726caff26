#pragma once

#include "Core/Coding/JSON.h"

#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// What Vespra reads of a hook's input. A text is absent when its key is missing or holds anything but a text in
/// Unicode, such as one that was cut within a character; of a key that comes twice the last value counts. The megabytes
/// that may stand beside them are skipped.
struct HookInput {
    std::optional<std::string> hookEventName; // "hook_event_name"
    std::optional<std::string> sessionID; // "session_id"
    std::optional<std::string> cwd; // "cwd"
    std::optional<std::string> notificationType; // "notification_type"
    std::optional<std::string> message; // "message"
    std::optional<std::string> transcriptPath; // "transcript_path"
    std::optional<std::string> agentID; // "agent_id"
    std::optional<std::string> source; // "source"
    /// "background_tasks" lists an agent, rather than a command, that is running.
    bool hasRunningAgents = false;

    bool operator==(const HookInput&) const = default;
};

/// Absent if `json` does not have the structure of one JSON object. Which escapes, bytes and sizes its texts and
/// numbers hold does not matter: agents cut texts in the middle of a character, which leaves half a pair of escapes
/// behind, and write numbers larger than any program holds.
std::optional<HookInput> parsedHookInput(std::string_view json);
/// The same of an object that has been parsed already.
HookInput hookInput(const JSON& object);

/// Reads a hook's input while it arrives, every byte once. The end of the JSON object is the end of the input: agents
/// do not always close the stream. Nothing is kept but what the members above need.
class HookInputParser {
public:
    enum class Progress { incomplete, complete, invalid };

    /// Takes the next piece, cut anywhere. An invalid input stays so; behind the object only white space may follow.
    Progress add(std::string_view piece);
    /// What has been read so far; all of it once `add` has returned `complete`.
    const HookInput& input() const { return input_; }

private:
    /// What the next byte belongs to, or what may begin with it.
    enum class Place {
        start,
        firstKey,
        key,
        insideKey,
        colon,
        firstElement,
        value,
        insideText,
        word,
        afterValue,
        end,
        wrong
    };

    std::size_t takeText(std::string_view piece);
    std::size_t takeWord(std::string_view piece);
    void takeByte(char byte);
    void takeStart(char byte);
    void beginText(Place place);
    void beginValue(char byte);
    void open(char closing, Place place);
    void close(char closing);
    void takeColon();
    void separate();
    void endValue();
    void keep(std::string_view bytes);

    Place place_ = Place::start;
    std::size_t markLength_ = 0; // of the byte order mark, as far as it has come
    bool afterBackslash_ = false;
    std::string closings_; // of the objects and arrays that are open, the innermost last
    std::string word_; // the number or literal that is arriving
    /// The outermost object's key, or the value of `wanted_`, as it is written.
    std::string kept_;
    /// Takes the value that is arriving; null for one that is skipped.
    void (*wanted_)(HookInput&, const JSON*) = nullptr;
    HookInput input_;
};

} // namespace vespra
